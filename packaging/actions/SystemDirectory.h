#pragma once

#include <string>

/// @return full path of the system directory, without a trailing backslash.
[[nodiscard]] std::string SystemDirectory();
