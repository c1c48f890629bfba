#include "IniLines.h"

#include <algorithm>
#include <cstdint>
#include <limits>

std::vector<std::string_view> LinesOf(std::span<const char> buffer)
{
    std::vector<std::string_view> lines;
    std::string_view rest(buffer.data(), buffer.size());
    while (!rest.empty() && rest.front() != '\0') {
        const std::string_view line = rest.substr(0, rest.find('\0'));
        lines.push_back(line);
        rest.remove_prefix(std::min(line.size() + 1, rest.size()));
    }
    return lines;
}

std::optional<std::string_view> ValueAfterLast(std::string_view line, std::string_view marker)
{
    const auto place = line.rfind(marker);
    if (place == std::string_view::npos) {
        return std::nullopt;
    }
    return line.substr(place + marker.size());
}

std::vector<std::string> SplitFromEnd(std::string_view list)
{
    std::vector<std::string> parts;
    for (auto comma = list.rfind(','); comma != std::string_view::npos; comma = list.rfind(',')) {
        parts.emplace_back(list.substr(comma + 1));
        list = list.substr(0, comma);
    }
    parts.emplace_back(list);
    return parts;
}

int LeadingNumber(std::string_view text)
{
    text.remove_prefix(std::min(text.find_first_not_of(" \t\n\v\f\r"), text.size()));
    const bool negative = text.starts_with('-');
    if (negative || text.starts_with('+')) {
        text.remove_prefix(1);
    }
    constexpr int64_t kLimit = int64_t{std::numeric_limits<int>::max()} + 1;
    int64_t number = 0;
    for (const char c : text) {
        if (c < '0' || c > '9') {
            break;
        }
        number = std::min(number * 10 + (c - '0'), kLimit);
    }
    return static_cast<int>(std::min<int64_t>(negative ? -number : number, std::numeric_limits<int>::max()));
}
