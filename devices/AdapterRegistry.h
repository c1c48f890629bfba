#pragma once

#include <windows.h>

#include <cstddef>
#include <optional>
#include <string>

#include "Handles.h"

/// @param path  Key path under HKEY_LOCAL_MACHINE.
/// @return the open key, null when it cannot be had.
[[nodiscard]] UniqueRegKey OpenMachineKey(const std::string& path, REGSAM access);

/// Reads a text of any length. A stored text without its terminator ends where the stored bytes end.
/// @return the text up to its first NUL; no value when there is none.
[[nodiscard]] std::optional<std::string> ReadTextValue(HKEY key, const char* name);

/// Reads under which network-configuration instance ID the network stack knows an adapter.
/// @param driverKey  The adapter's driver key below the system's class key: class GUID, backslash, number.
/// @return no value when the key or its "NetCfgInstanceId" cannot be read.
[[nodiscard]] std::optional<std::string> ReadNetCfgInstanceId(const std::string& driverKey);
