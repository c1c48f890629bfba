#pragma once

#include <string_view>

/// Whether an installed management extension is new enough for a driver update on a machine that boots over FCoE: 16.2
/// or later.
/// @param oemVersion  Its version text, such as "16.2.49.0". Only the first two parts count, each read as leading
/// digits. Throws std::out_of_range for a text without two parts: such a registration is broken, and a machine that may
/// depend on it to boot is not touched.
[[nodiscard]] bool ManagementExtensionAllowsUpdate(std::string_view oemVersion);
