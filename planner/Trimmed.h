#pragma once

#include <cstddef>
#include <string_view>

/// @return a value of an INF without the blanks and the quotation marks around it.
[[nodiscard]] inline std::string_view Trimmed(std::string_view text)
{
    constexpr std::string_view kAround = " \t\"";
    const std::size_t first = text.find_first_not_of(kAround);
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(kAround) - first + 1);
}
