#pragma once

#include <string>
#include <vector>

/// @return the names of all functions in a program's import table, in its order; a library's own are left out when it
/// is
///         called `without`. Throws std::runtime_error for a file that is no 64-bit program.
[[nodiscard]] std::vector<std::string> ImportsOf(const std::string& program, const std::string& without = {});
