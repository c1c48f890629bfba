#pragma once

#include <cstdint>

/// What a device's own state says about the driver that was just bound to it, from best to worst.
enum class DriverVerdict
{
    Gone,         ///< the device is no longer there
    Accepted,     ///< no problem, or none that the driver could have caused
    NeedsRestart, ///< the driver takes effect after a restart
    Refused,      ///< the driver does not run: unsigned, not loaded, not started, or any other problem
};

/// A device's state after a binding.
struct DeviceState
{
    uint32_t status = 0;             ///< DN_... bits of cfg.h
    uint32_t problem = 0;            ///< CM_PROB_... number, meaningful only while the status has DN_HAS_PROBLEM
    bool updateNeedsRestart = false; ///< the driver update that bound the driver asked for a restart
};

/// @return the problem number of the state, 0 when it has none.
[[nodiscard]] uint32_t ProblemOf(const DeviceState& state) noexcept;

/// A restart that the device or the driver update asks for decides two things: a driver that runs takes effect only
/// after it, and a driver that could not be started or loaded is not judged before it. Other problems are refusals
/// whether or not a restart is asked for, since a restart does not solve them.
[[nodiscard]] DriverVerdict JudgeDriver(const DeviceState& state) noexcept;

/// The last error that goes with a driver refused because of problem `problem`. Bit 29, which the system leaves to
/// applications, distinguishes it from the system's own errors: problem 52 is 0x20000034.
[[nodiscard]] uint32_t ErrorForProblem(uint32_t problem) noexcept;
