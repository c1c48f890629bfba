#pragma once

#include <cstddef>
#include <span>
#include <string>

/// Room for an instance ID with its terminator.
inline constexpr std::size_t kInstanceIdChars = 260;

/// Finds out under which network-configuration instance ID, a GUID in text form, the network stack knows a PCI device.
/// Only the device's first instance is looked at.
/// @param deviceKeyName  Key name below the PCI key, such as VEN_5D1A&DEV_1A2B&SUBSYS_00011A2B&REV_03.
/// @param instanceId     Receives the ID; empty when there is none or when it does not fit. An ID has at most 259
///                       characters, and its value takes at most 260 bytes in the registry.
/// @return always 0: whether there is an ID shows in the text.
int GetNetCfgInstanceId(const std::string& deviceKeyName, std::span<char> instanceId);
