#include "NetCfgInstance.h"

#include <windows.h>

#include <array>
#include <cstddef>
#include <optional>

#include "AdapterRegistry.h"
#include "Handles.h"
#include "OrvSecure.h"
#include "Trace.h"

namespace {
constexpr char kThisFile[] = "NetCfgInstance";
constexpr std::size_t kPathChars = 260;

/// A registry path of at most 259 characters.
using KeyPath = std::array<char, kPathChars>;

/// @return false when the longer path does not fit; a path that was cut would name some other key.
bool Append(KeyPath& path, const std::string& part)
{
    return OrvSafeCat(kThisFile, __LINE__, path.data(), path.size(), "\\") == 0 &&
           OrvSafeCat(kThisFile, __LINE__, path.data(), path.size(), part.c_str()) == 0;
}

/// @return the driver key of the device's first instance.
std::optional<std::string> DriverKeyOf(const std::string& deviceKeyName)
{
    KeyPath path{R"(SYSTEM\CurrentControlSet\Enum\PCI)"};
    if (!Append(path, deviceKeyName)) {
        return std::nullopt;
    }
    const UniqueRegKey deviceKey = OpenMachineKey(path.data(), KEY_ENUMERATE_SUB_KEYS);
    const std::optional<std::string> instance = deviceKey ? FirstSubKey(deviceKey.get()) : std::nullopt;
    if (!instance || !Append(path, *instance)) {
        return std::nullopt;
    }
    const UniqueRegKey instanceKey = OpenMachineKey(path.data(), KEY_READ);
    return instanceKey ? ReadTextValue(instanceKey.get(), "Driver") : std::nullopt;
}

/// @return the ID that the device's driver key holds.
std::optional<std::string> InstanceIdOf(const std::string& deviceKeyName)
{
    const std::optional<std::string> driverKey = DriverKeyOf(deviceKeyName);
    const UniqueRegKey key = driverKey ? OpenDriverKey(*driverKey) : nullptr;
    return key ? ReadTextValue(key.get(), kNetCfgInstanceIdValue, kInstanceIdChars) : std::nullopt;
}
} // namespace

int GetNetCfgInstanceId(const std::string& deviceKeyName, std::span<char> instanceId)
{
    Trace("Enter -> GetNetCfgInstanceId()\n");
    Trace(deviceKeyName);
    if (!instanceId.empty()) {
        instanceId.front() = '\0';
    }
    const std::optional<std::string> found = InstanceIdOf(deviceKeyName);
    // A text that fills all its bytes has no terminator among them.
    if (found && found->size() < kInstanceIdChars) {
        OrvSafeCopy(kThisFile, __LINE__, instanceId.data(), instanceId.size(), found->c_str());
    }
    Trace("Exit -> GetNetCfgInstanceId()\n");
    return 0;
}
