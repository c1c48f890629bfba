#include "PciEnumeration.h"

#include <string>

#include "DevicePass.h"
#include "DialogControls.h"

uint32_t EnumerateRegistryForPCIDevices(DriverInstallRecord& record, IDriverInstallInterface* driverInstall,
                                        HWND dialog)
{
    return RunDevicePass(record, driverInstall,
                         [dialog](const std::string& text) { SetDlgItemTextA(dialog, kStatusText, text.c_str()); });
}
