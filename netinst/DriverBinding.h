#pragma once

#include <cstdint>

/// What an install answers.
struct BindingAnswer
{
    int32_t status = 0;
    uint32_t lastError = 0; ///< 0 exactly when the status is 0
};

/// Binds every present device of a hardware ID to an INF, also when its driver is as good or better, and then asks the
/// devices whether the driver runs. Nobody is asked where no window can be seen or this process's set-up functions ask
/// nothing: the platform then fails with its own code. A restart that is needed is recorded, a device that is not there
/// is marked for re-installation, and both are traced, as is the reason of every refusal.
/// @return status 0; kStatusRefused when the system refused the driver; 0xE000020B when no device is there. The last
///         error is the system's own reason, or ErrorForProblem for a driver that was bound and does not run.
[[nodiscard]] BindingAnswer BindDriver(const char* hardwareId, const char* infPath) noexcept;
