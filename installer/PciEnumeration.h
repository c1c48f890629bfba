#pragma once

#include <windows.h>

#include <cstdint>

#include "DriverInstallRecord.h"
#include "NetInst.h"

/// The device pass of a run with a dialog (RunDevicePass).
/// @param dialog  Progress dialog; its status text shows what is being installed. May be null.
uint32_t EnumerateRegistryForPCIDevices(DriverInstallRecord& record, IDriverInstallInterface* driverInstall,
                                        HWND dialog);
