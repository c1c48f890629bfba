#pragma once

#include <string_view>

/// Puts a counting gate in the place of every function of the program's import table.
void HookImports();

/// @return a counting gate for an entry point that the program looked up.
[[nodiscard]] void* HookEntryPoint(std::string_view name, void* function);
