#pragma once

#include <array>
#include <span>
#include <string_view>

#include "StoredText.h"

/// The keys below HKEY_LOCAL_MACHINE that a description of a machine needs. Everything else is skipped.

struct WantedKey
{
    /// Upper-case names with backslashes between them. "*" is any one name; in the second place it is a control set.
    std::string_view path;
    std::span<const std::string_view> values; ///< names in upper case
};

/// The storage controllers: the iSCSI initiator is one of them.
inline constexpr std::string_view kStorageControllers = R"(CONTROL\CLASS\{4D36E97B-E325-11CE-BFC1-08002BE10318})";

namespace wanted_keys {
inline constexpr std::array kSelect = std::to_array<std::string_view>({"CURRENT"});
inline constexpr std::array kProduct = std::to_array<std::string_view>({"PRODUCTTYPE", "PRODUCTSUITE"});
inline constexpr std::array kProcessor = std::to_array<std::string_view>({"PROCESSOR_ARCHITECTURE"});
inline constexpr std::array kServicePack = std::to_array<std::string_view>({"CSDVERSION"});
inline constexpr std::array kCodePage = std::to_array<std::string_view>({"ACP"});
inline constexpr std::array kComputerName = std::to_array<std::string_view>({"COMPUTERNAME"});
inline constexpr std::array kController = std::to_array<std::string_view>({"MATCHINGDEVICEID"});
inline constexpr std::array kControllerParameters = std::to_array<std::string_view>({"DUMPMINIPORT"});
inline constexpr std::array kInstance =
    std::to_array<std::string_view>({"COMPATIBLEIDS", "HARDWAREID", "CLASS", "CLASSGUID", "SERVICE", "DRIVER",
                                     "CONFIGFLAGS", "DEVICEDESC", "FRIENDLYNAME"});
inline constexpr std::array kVersion =
    std::to_array<std::string_view>({"CURRENTVERSION", "CURRENTMAJORVERSIONNUMBER", "CURRENTMINORVERSIONNUMBER",
                                     "CURRENTBUILDNUMBER", "CSDVERSION", "PRODUCTNAME", "INSTALLATIONTYPE"});
inline constexpr std::array kVersionOf9x = std::to_array<std::string_view>({"VERSIONNUMBER"});
inline constexpr std::array kExtension = std::to_array<std::string_view>({"OEMVERSION"});
} // namespace wanted_keys

inline constexpr std::array kWantedKeys = std::to_array<WantedKey>({
    {R"(SYSTEM\*\ENUM\PCI\*\*)", wanted_keys::kInstance},
    {R"(SYSTEM\*\ENUM\PCI\*)", {}},
    {R"(SYSTEM\*\ENUM\PCI)", {}},
    {R"(SYSTEM\SELECT)", wanted_keys::kSelect},
    {R"(SYSTEM\*\CONTROL\PRODUCTOPTIONS)", wanted_keys::kProduct},
    {R"(SYSTEM\*\CONTROL\SESSION MANAGER\ENVIRONMENT)", wanted_keys::kProcessor},
    {R"(SYSTEM\*\CONTROL\WINDOWS)", wanted_keys::kServicePack},
    {R"(SYSTEM\*\CONTROL\NLS\CODEPAGE)", wanted_keys::kCodePage},
    {R"(SYSTEM\*\CONTROL\COMPUTERNAME\COMPUTERNAME)", wanted_keys::kComputerName},
    {R"(SYSTEM\*\CONTROL\CLASS\{4D36E97B-E325-11CE-BFC1-08002BE10318})", {}},
    {R"(SYSTEM\*\CONTROL\CLASS\{4D36E97B-E325-11CE-BFC1-08002BE10318}\*)", wanted_keys::kController},
    {R"(SYSTEM\*\CONTROL\CLASS\{4D36E97B-E325-11CE-BFC1-08002BE10318}\*\PARAMETERS)",
     wanted_keys::kControllerParameters},
    {R"(SOFTWARE\MICROSOFT\WINDOWS NT\CURRENTVERSION)", wanted_keys::kVersion},
    {R"(SOFTWARE\MICROSOFT\WINDOWS\CURRENTVERSION)", wanted_keys::kVersionOf9x},
    {R"(SOFTWARE\NORDA\NETWORK_SERVICES\TERN)", wanted_keys::kExtension},
    {R"(ENUM\PCI\*\*)", wanted_keys::kInstance},
    {R"(ENUM\PCI\*)", {}},
    {R"(ENUM\PCI)", {}},
});

/// @param path  Names below HKEY_LOCAL_MACHINE, in any letter case.
/// @return null for a key that is not needed.
[[nodiscard]] const WantedKey* FindWantedKey(std::span<const std::u16string_view> path);

/// @param path  Names of which the last one has lost its end.
/// @return true when the whole path may be that of a key that is needed.
[[nodiscard]] bool MayBecomeWanted(std::span<const std::u16string_view> path);

/// @return true for a PCI device, its instances, and the key that holds the devices.
[[nodiscard]] bool IsDeviceKey(const WantedKey& key);

[[nodiscard]] bool WantsValue(const WantedKey& key, std::u16string_view name);

/// @return true for "CurrentControlSet" and "ControlSet" with three digits.
[[nodiscard]] bool IsControlSet(std::u16string_view name);
