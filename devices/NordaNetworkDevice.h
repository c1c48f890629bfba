#pragma once

#include <string>

/// Decides whether the program serves a PCI device: by the vendor number in its key name on Windows 98, by the
/// compatible IDs of its first instance everywhere else. Further instances of the same device are not looked at.
/// @param deviceKeyName  Key name below the PCI key, such as VEN_5D1A&DEV_1A2B&SUBSYS_00011A2B&REV_03.
/// @param osFamily       The record's family name.
/// @return false also when the registry cannot be read.
[[nodiscard]] bool IsNordaNetworkDevice(const std::string& deviceKeyName, const std::string& osFamily);
