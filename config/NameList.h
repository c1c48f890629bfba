#pragma once

#include <string>
#include <string_view>
#include <vector>

/// @return true when `name` is in `names`, letter case aside.
[[nodiscard]] bool ContainsName(const std::vector<std::string>& names, std::string_view name);
