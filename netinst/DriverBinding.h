#pragma once

#include <cstdint>

/// The result of a binding.
struct BindingAnswer
{
    int32_t status = 0;
    uint32_t lastError = 0; ///< 0 exactly when the status is 0
};

/// Binds every present device of a hardware ID to an INF, even when its driver is as good or better, and then asks the
/// devices whether the driver runs. The platform asks the user nothing when no window can be seen or this process's
/// set-up functions are non-interactive: it then fails with its own code. A restart that is needed is recorded, devices
/// that are not present are marked for re-installation, and both are traced, as is the reason of every refusal.
/// @return status 0; kStatusRefused when the system refused the driver; 0xE000020B when no device is present. The last
///         error is the system's own reason, or ErrorForProblem for a driver that was bound and does not run.
[[nodiscard]] BindingAnswer BindDriver(const char* hardwareId, const char* infPath) noexcept;
