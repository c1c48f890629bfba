#pragma once

#include <string>

/// @return string `id` of the shippable folder's MorvixRes.dll in the language that the program speaks on this system:
///         the system's own, English where the library does not have it.
[[nodiscard]] std::string ShownText(unsigned id);
