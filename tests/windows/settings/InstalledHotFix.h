#pragma once

#include <string>

/// @return the identifier of a hotfix that this machine lists as installed; throws std::runtime_error when it lists
/// none.
[[nodiscard]] std::string AnInstalledHotFix();
