#pragma once

#include <cstdint>

/// Looks before an install whether there is something to install: the platform's driver update does not say so
/// everywhere.
/// @param hardwareId  Hardware or compatible ID of the devices, letter case aside.
/// @param infPath     Full path of the INF.
/// @return 0 when a present device has that ID, the INF serves it and the driver's files are there; the platform's
/// reason
///         when the INF cannot be opened (a Win32 error or 0xE000....); 0xE000020B when no present device has the ID;
///         0xE0000228 when the INF lists none of those that have it; ERROR_FILE_NOT_FOUND (2) when a driver file is
///         missing.
[[nodiscard]] uint32_t CheckServedDevice(const char* hardwareId, const char* infPath) noexcept;
