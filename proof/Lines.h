#pragma once

#include <string_view>
#include <vector>

/// The lines of a text that are not empty, without their ends; a line may end as on Windows.
[[nodiscard]] std::vector<std::string_view> LinesOf(std::string_view text);
