#include "OrvText.h"

#include <charconv>

std::string_view OrvTrimLeft(std::string_view text) noexcept
{
    const size_t first = text.find_first_not_of(' ');
    return first == std::string_view::npos ? std::string_view() : text.substr(first);
}

std::string_view OrvTrimRight(std::string_view text) noexcept
{
    return text.substr(0, text.find_last_not_of(' ') + 1);
}

std::vector<std::string> OrvSplitText(std::string_view text, char separator)
{
    std::vector<std::string> parts;
    std::string_view rest = text;
    for (size_t at = rest.find(separator); at != std::string_view::npos; at = rest.find(separator)) {
        parts.emplace_back(rest.substr(0, at));
        rest.remove_prefix(at + 1);
    }
    if (!parts.empty() && !rest.empty()) {
        parts.emplace_back(rest);
    }
    return parts;
}

bool OrvDecimalText(int32_t value, std::span<char, kOrvDecimalBytes> text) noexcept
{
    // The last byte is for the terminator.
    const auto [end, error] = std::to_chars(text.data(), text.data() + text.size() - 1, value);
    if (error != std::errc()) {
        text[0] = '\0';
        return false;
    }
    *end = '\0';
    return true;
}
