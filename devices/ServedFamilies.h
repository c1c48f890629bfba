#pragma once

#include <array>
#include <optional>
#include <string_view>

#include "DriverInstallRecord.h"

/// How a matched device gets its driver.
enum class InstallRoute
{
    DriverUpdate = 1,    ///< the platform's driver update
    DriverInterface = 2, ///< the installer library's driver-install interface
    LegacyInstaller = 3, ///< the legacy install helper
};

/// What the device pass does on a family of systems.
struct ServedFamily
{
    std::string_view name; ///< as the system prober writes it into the install record
    const char* pciKey;    ///< the PCI devices' key under HKEY_LOCAL_MACHINE
    InstallRoute route;
};

// The trailing backslash of the Windows 98 row is intentional, and so is its absence from the millennium row.
inline constexpr std::array kServedFamilies = std::to_array<ServedFamily>({
    {kFamilyWindowsMillenium, R"(Enum\PCI)", InstallRoute::DriverUpdate},
    {kFamilyWindowsWhistler, R"(SYSTEM\CurrentControlSet\Enum\PCI)", InstallRoute::DriverInterface},
    {kFamilyWindows2000, R"(SYSTEM\CurrentControlSet\Enum\PCI)", InstallRoute::DriverInterface},
    {kFamilyWindowsVista, R"(SYSTEM\CurrentControlSet\Enum\PCI)", InstallRoute::DriverInterface},
    {kFamilyWindows98, R"(Enum\PCI\)", InstallRoute::LegacyInstaller},
});

/// @param name  Family name, compared as a whole and exactly.
/// @return the first row of that name, or no value for a family that is not served.
[[nodiscard]] constexpr std::optional<ServedFamily> FindServedFamily(std::string_view name)
{
    for (const ServedFamily& family : kServedFamilies) {
        if (family.name == name) {
            return family;
        }
    }
    return std::nullopt;
}
