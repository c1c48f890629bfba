#pragma once

#include <functional>
#include <string>

#include "DriverInstallRecord.h"
#include "NetInst.h"
#include "ServedFamilies.h"

/// Receives the text to be shown while a device is being installed.
using ReportProgressFn = std::function<void(const std::string& text)>;

/// Installs the driver of the device that the record names, by the route of the system's family, and reports the
/// device's description first. A failed install is traced, and on the driver-interface route classified, but never ends
/// the walk over the devices.
/// @param record         Names the matched INF and the hardware ID.
/// @param deviceId       Name of the device's key below the PCI key.
/// @param driverInstall  Used on the driver-interface route. Without one that route's install counts as refused.
void InstallMatchedDevice(InstallRoute route, DriverInstallRecord& record, const std::string& deviceId,
                          IDriverInstallInterface* driverInstall, const ReportProgressFn& report);
