#include "NetCfgInstance.h"

#include <windows.h>

#include <array>
#include <cstddef>
#include <optional>

#include "AdapterRegistry.h"
#include "OrvSecure.h"
#include "Trace.h"

namespace {
constexpr char kSource[] = "NetCfgInstance";
constexpr std::size_t kPathChars = 260;
constexpr std::size_t kInstanceIdChars = 260;

/// A registry path of at most 259 characters.
using KeyPath = std::array<char, kPathChars>;

/// @return false when the longer path does not fit; a path that was cut would name some other key.
bool Append(KeyPath& path, const std::string& part)
{
    return OrvSafeCat(kSource, __LINE__, path.data(), path.size(), "\\") == 0 &&
           OrvSafeCat(kSource, __LINE__, path.data(), path.size(), part.c_str()) == 0;
}

std::optional<std::string> FirstSubKey(const KeyPath& path)
{
    const UniqueRegKey key = OpenMachineKey(path.data(), KEY_ENUMERATE_SUB_KEYS);
    std::array<char, 256> name{};
    DWORD length = name.size();
    if (!key ||
        RegEnumKeyExA(key.get(), 0, name.data(), &length, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS) {
        return std::nullopt;
    }
    return std::string(name.data());
}

/// @return the driver key of the device's first instance.
std::optional<std::string> DriverKeyOf(const std::string& deviceKeyName)
{
    KeyPath path{R"(SYSTEM\CurrentControlSet\Enum\PCI)"};
    if (!Append(path, deviceKeyName)) {
        return std::nullopt;
    }
    const std::optional<std::string> instance = FirstSubKey(path);
    if (!instance || !Append(path, *instance)) {
        return std::nullopt;
    }
    const UniqueRegKey key = OpenMachineKey(path.data(), KEY_READ);
    return key ? ReadTextValue(key.get(), "Driver") : std::nullopt;
}
} // namespace

int GetNetCfgInstanceId(const std::string& deviceKeyName, std::span<char> instanceId)
{
    Trace("Enter -> GetNetCfgInstanceId()\n");
    Trace(std::string(deviceKeyName));
    if (!instanceId.empty()) {
        instanceId.front() = '\0';
    }
    if (const std::optional<std::string> driverKey = DriverKeyOf(deviceKeyName)) {
        const std::optional<std::string> found = ReadNetCfgInstanceId(*driverKey);
        if (found && found->size() < kInstanceIdChars) {
            OrvSafeCopy(kSource, __LINE__, instanceId.data(), instanceId.size(), found->c_str());
        }
    }
    Trace("Exit -> GetNetCfgInstanceId()\n");
    return 0;
}
