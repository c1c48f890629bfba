#pragma once

#include <string>
#include <string_view>

/// @return the SHA-256 sum of some bytes as 64 lower-case hexadecimal digits. Computed here because the oldest systems
///         served have no library for it.
[[nodiscard]] std::string Sha256(std::string_view content);
