#pragma once

#include <windows.h>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "Handles.h"

/// Reading of the registry as the device checks do it.

/// @param path  Key path under HKEY_LOCAL_MACHINE.
/// @return the open key, null when it cannot be opened.
[[nodiscard]] UniqueRegKey OpenMachineKey(const std::string& path, REGSAM access);

/// @param key  Open for KEY_ENUMERATE_SUB_KEYS.
/// @return the name of the key's first sub-key in the registry's own order; no value when it has none.
[[nodiscard]] std::optional<std::string> FirstSubKey(HKEY key);

/// Reads a value of any type and length.
/// @return the stored bytes and at least five zero bytes after them, so that a text or a list that lacks its
///         terminators ends there; no value when there is none.
[[nodiscard]] std::optional<std::vector<char>> ReadValueBytes(HKEY key, const char* name);

/// Reads a text of any length. A stored text without its terminator ends where the stored bytes end.
/// @return the text up to its first NUL; no value when there is none.
[[nodiscard]] std::optional<std::string> ReadTextValue(HKEY key, const char* name);

/// The same for a text that is only looked for in so many bytes.
/// @return no value when there is none, or one that takes more than `maxBytes` in the registry with its terminator.
[[nodiscard]] std::optional<std::string> ReadTextValue(HKEY key, const char* name, std::size_t maxBytes);

/// Opens the key that holds what the system knows about an adapter's driver.
/// @param driverKey  Its name below the system's class key: class GUID, backslash, number.
/// @return the key, open for reading; null when it cannot be opened.
[[nodiscard]] UniqueRegKey OpenDriverKey(const std::string& driverKey);

/// Name of the value of a driver key that says under which network-configuration instance ID the network stack knows
/// the adapter.
inline constexpr char kNetCfgInstanceIdValue[] = "NetCfgInstanceId";
