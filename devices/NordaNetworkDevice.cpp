#include "NordaNetworkDevice.h"

#include "DeviceAcceptance.h"
#include "InstallerSearch.h"
#include "RegistryDevices.h"

bool IsNordaNetworkDevice(const std::string& deviceKeyName, const std::string& osFamily)
{
    RegistryDevices devices;
    InstallerLog log;
    return AcceptDevice(deviceKeyName, osFamily, devices, log).IsAccepted();
}
