#pragma once

#include <cstdint>

/// What a device's own state says about the driver that was just bound to it, the worse the later.
enum class DeviceVerdict
{
    Gone,         ///< the device is no longer there
    Accepted,     ///< nothing is wrong, or nothing that the driver has to do with
    NeedsRestart, ///< the driver takes effect after a restart
    Refused,      ///< the driver does not run: unsigned, not loaded, not started, or any other problem
};

/// A device's state, as the configuration manager reports it.
struct DeviceState
{
    uint32_t status = 0;  ///< DN_... bits of cfg.h
    uint32_t problem = 0; ///< CM_PROB_... number, meaningful only while the status has DN_HAS_PROBLEM
};

/// @return the problem number of the state, 0 when it has none.
[[nodiscard]] uint32_t ProblemOf(const DeviceState& state) noexcept;

[[nodiscard]] DeviceVerdict JudgeDevice(const DeviceState& state) noexcept;

/// The last error that goes with a driver refused because of problem `problem`. Bit 29, which the system leaves to
/// programs, tells it from an error of the system: problem 52 is 0x20000034.
[[nodiscard]] uint32_t ErrorForProblem(uint32_t problem) noexcept;
