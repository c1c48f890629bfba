#pragma once

#include <cstdint>

class SetupApi;

/// Checks before an installation whether there is anything to install: the platform's driver update does not report
/// this on every system.
/// @param hardwareId  Hardware or compatible ID of the devices; letter case is ignored.
/// @param infPath     Full path of the INF.
/// @return 0 when a present device has that ID, the INF supports it and the driver's files exist; the platform's reason
///         when the INF cannot be opened (a Win32 error or 0xE000....); 0xE000020B when no present device has the ID;
///         0xE0000228 when the INF lists none of the devices that have it; ERROR_FILE_NOT_FOUND (2) when a driver file
///         is missing.
[[nodiscard]] uint32_t CheckServedDevice(const SetupApi& api, const char* hardwareId, const char* infPath) noexcept;
