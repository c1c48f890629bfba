#include "NetworkDeviceTest.h"

#include <windows.h>

#include <array>
#include <optional>
#include <vector>

#include "DriverInstallRecord.h"
#include "Handles.h"
#include "NetworkDevices.h"
#include "Trace.h"

namespace {
// Whatever the stored list ends with, these zero bytes end it.
constexpr std::size_t kSpareBytes = 5;

UniqueRegKey OpenKey(const std::string& path, REGSAM access)
{
    HKEY key = nullptr;
    if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, path.c_str(), 0, access, &key) != ERROR_SUCCESS) {
        return nullptr;
    }
    return UniqueRegKey(key);
}

std::optional<std::string> FirstInstance(HKEY deviceKey)
{
    std::array<char, 256> name{};
    DWORD length = name.size();
    if (RegEnumKeyExA(deviceKey, 0, name.data(), &length, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS) {
        return std::nullopt;
    }
    return std::string(TextIn(name));
}

/// @return the raw list and at least five zero bytes behind it, empty when it cannot be read.
std::vector<char> ReadCompatibleIds(HKEY instanceKey)
{
    constexpr char kValue[] = "CompatibleIDs";
    DWORD bytes = 0;
    if (RegQueryValueExA(instanceKey, kValue, nullptr, nullptr, nullptr, &bytes) != ERROR_SUCCESS) {
        return {};
    }
    std::vector<char> list(std::size_t{bytes} + kSpareBytes, '\0');
    if (RegQueryValueExA(instanceKey, kValue, nullptr, nullptr, reinterpret_cast<BYTE*>(list.data()), &bytes) !=
        ERROR_SUCCESS) {
        return {};
    }
    return list;
}

bool FirstInstanceIsAccepted(const std::string& deviceKeyName)
{
    std::string path = R"(SYSTEM\CurrentControlSet\Enum\PCI\)" + deviceKeyName;
    Trace(std::string(path));
    const UniqueRegKey deviceKey = OpenKey(path, KEY_ENUMERATE_SUB_KEYS);
    if (!deviceKey) {
        return false;
    }
    const std::optional<std::string> instance = FirstInstance(deviceKey.get());
    if (!instance) {
        return false;
    }
    path += "\\" + *instance;
    const UniqueRegKey instanceKey = OpenKey(path, KEY_READ);
    if (!instanceKey) {
        return false;
    }
    const std::vector<char> list = ReadCompatibleIds(instanceKey.get());
    if (FindAcceptedId({list.data(), list.size()}).empty()) {
        return false;
    }
    Trace("Norda Network Adapter found!");
    return true;
}
} // namespace

bool IsNordaNetworkDevice(std::string deviceKeyName, const std::string& osFamily)
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
