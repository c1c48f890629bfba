#pragma once

#include <cstdint>
#include <string_view>

/// Character classes of the library: ASCII only, no locale. Bytes below 0x20 and from 0x7F upward belong to none.

[[nodiscard]] constexpr bool OrvIsAlphabetic(char c) noexcept
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

[[nodiscard]] constexpr bool OrvIsNumeric(char c) noexcept
{
    return c >= '0' && c <= '9';
}

/// The space is symbolic.
[[nodiscard]] constexpr bool OrvIsSymbolic(char c) noexcept
{
    return c >= 0x20 && c <= 0x7E && !OrvIsAlphabetic(c) && !OrvIsNumeric(c);
}

[[nodiscard]] constexpr bool OrvIsHexadecimal(char c) noexcept
{
    return OrvIsNumeric(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

/// Classes for OrvIsTextOfType, which may be combined; other bits of the mask are ignored.
inline constexpr uint32_t kOrvAllowAlphabetic = 1;
inline constexpr uint32_t kOrvAllowNumeric = 2;
inline constexpr uint32_t kOrvAllowSymbolic = 4;

/// @return false when `text` holds a character of a class that `allowed` lacks. Characters without a class are ignored.
[[nodiscard]] bool OrvIsTextOfType(std::string_view text, uint32_t allowed) noexcept;

/// @return true when every character is a hexadecimal digit; the empty text is hexadecimal.
[[nodiscard]] bool OrvIsTextHexadecimal(std::string_view text) noexcept;
