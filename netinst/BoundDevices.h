#pragma once

#include <cstdint>

#include "DeviceProblem.h"

class SetupApi;

/// What the devices of a hardware ID report after a binding.
struct BoundDevicesReport
{
    DriverVerdict worst = DriverVerdict::Gone; ///< Gone also when no device has the ID
    uint32_t problem = 0;                      ///< problem number of the device with the worst verdict
    bool restartNeeded = false;                ///< the verdict on one of the devices is NeedsRestart
};

/// Asks every present device with a hardware or compatible ID for its state. A device whose state cannot be read counts
/// as one without a problem: the system reported that it bound the driver, and nothing contradicts it.
/// @param updateNeedsRestart  The driver update asked for a restart.
[[nodiscard]] BoundDevicesReport AskBoundDevices(const SetupApi& api, const char* hardwareId,
                                                 bool updateNeedsRestart) noexcept;
