#pragma once

#include <windows.h>

#include <string>

#include "DriverInstallRecord.h"
#include "NetInst.h"
#include "SystemFamilies.h"

/// Installs the driver of the device that the record names, by the route of the system's family, and shows the device's
/// description in the dialog. A failed install is traced, and on the driver-interface route classified, but never ends
/// the walk over the devices.
/// @param record         Names the matched INF and the hardware ID.
/// @param deviceId       Name of the device's key below the PCI key.
/// @param driverInstall  Used on the driver-interface route. Without one that route's install counts as refused.
/// @param dialog         Progress dialog, may be null.
void InstallMatchedDevice(InstallRoute route, DriverInstallRecord& record, const std::string& deviceId,
                          IDriverInstallInterface* driverInstall, HWND dialog);
