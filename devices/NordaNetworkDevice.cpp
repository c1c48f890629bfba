#include "NordaNetworkDevice.h"

#include <windows.h>

#include <optional>
#include <vector>

#include "AdapterRegistry.h"
#include "DriverInstallRecord.h"
#include "Handles.h"
#include "NetworkDevices.h"
#include "Trace.h"

namespace {
/// @return the first instance's list of compatible IDs as it is stored; no value when it cannot be read.
std::optional<std::vector<char>> ReadCompatibleIds(const std::string& devicePath)
{
    const UniqueRegKey deviceKey = OpenMachineKey(devicePath, KEY_ENUMERATE_SUB_KEYS);
    const std::optional<std::string> instance = deviceKey ? FirstSubKey(deviceKey.get()) : std::nullopt;
    if (!instance) {
        return std::nullopt;
    }
    const UniqueRegKey instanceKey = OpenMachineKey(devicePath + "\\" + *instance, KEY_READ);
    return instanceKey ? ReadValueBytes(instanceKey.get(), "CompatibleIDs") : std::nullopt;
}

bool FirstInstanceIsAccepted(const std::string& deviceKeyName)
{
    const std::string path = R"(SYSTEM\CurrentControlSet\Enum\PCI\)" + deviceKeyName;
    Trace(path);
    const std::optional<std::vector<char>> ids = ReadCompatibleIds(path);
    if (!ids || FindAcceptedId({ids->data(), ids->size()}).empty()) {
        return false;
    }
    Trace("Norda Network Adapter found!");
    return true;
}
} // namespace

bool IsNordaNetworkDevice(const std::string& deviceKeyName, const std::string& osFamily)
{
    Trace("Enter -> IsNordaNetworkDevice()\n");
    if (osFamily == kFamilyWindows98) {
        // The vendor number counts wherever it stands, and this branch leaves without the exit line.
        if (deviceKeyName.find("VEN_5D1A") == std::string::npos) {
            return false;
        }
        Trace("win 98 ");
        return true;
    }
    const bool accepted = FirstInstanceIsAccepted(deviceKeyName);
    Trace("Exit -> IsNordaNetworkDevice()\n");
    return accepted;
}
