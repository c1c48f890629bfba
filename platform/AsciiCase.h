#pragma once

#include <string>
#include <string_view>

/// Letter case of the letters A to Z alone, whatever the system's language.

[[nodiscard]] constexpr char UpperAscii(char c) noexcept
{
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

[[nodiscard]] constexpr char LowerAscii(char c) noexcept
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

[[nodiscard]] inline std::string UpperAscii(std::string_view text)
{
    std::string upper(text);
    for (char& c : upper) {
        c = UpperAscii(c);
    }
    return upper;
}
