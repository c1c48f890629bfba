#pragma once

#include <cstdint>

#include "DeviceInstall.h"
#include "DriverInstallRecord.h"
#include "KitSource.h"
#include "NetInst.h"

/// Result of a device pass that could not begin.
inline constexpr uint32_t kDevicePassFailed = 0xFFFFFFFF;

/// One device pass: walks the PCI devices of the registry in its own order, keeps the ones that IsNordaNetworkDevice
/// accepts, searches the INF files for each in up to four passes and installs each match before the next device is
/// read. The platform's answers about the setup INI and the INF files are used again for the rest of the pass
/// (KeptAnswers).
/// @param record         The run's install record. Its family name selects key and route. The INF path (upper case) and
///                       the hardware ID (always the full one) are those of the last matched device afterwards.
/// @param driverInstall  Used on the driver-interface route only; may be null on the others. Not owned.
/// @param report         Called before each install.
/// @return kDevicePassFailed when the family is not served or has no PCI key, otherwise 0. What was found is in
///         DevicePassState.
/// @throws std::out_of_range for an accepted device that no INF lists by its full name when that name has no "&REV", in
///         upper case: the third search pass has nothing to keep. A name with "&SUBSYS" only at its start skips that
///         pass. The walk ends there, without its last lines of trace.
uint32_t RunDevicePass(DriverInstallRecord& record, IDriverInstallInterface* driverInstall,
                       const ReportProgressFn& report);

/// The same over any source.
uint32_t RunDevicePassOver(KitSource& source, DriverInstallRecord& record, IDriverInstallInterface* driverInstall,
                           const ReportProgressFn& report);
