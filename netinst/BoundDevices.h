#pragma once

#include <cstdint>

#include "DeviceProblem.h"

/// What the devices of a hardware ID say after a binding.
struct BoundDevicesReport
{
    DeviceVerdict worst = DeviceVerdict::Gone; ///< Gone also when no device has the ID
    uint32_t problem = 0;                      ///< problem number of the device that gave the worst verdict
    bool restartNeeded = false;                ///< one of the devices needs a restart, whatever the worst verdict is
};

/// Asks every present device of a hardware or compatible ID for its state. A state that cannot be asked for counts as
/// accepted: the system said that it has bound the driver, and nothing contradicts it.
[[nodiscard]] BoundDevicesReport AskBoundDevices(const char* hardwareId) noexcept;
