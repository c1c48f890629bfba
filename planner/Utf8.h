#pragma once

#include <cstddef>
#include <string_view>

/// One character at the beginning of a text.
struct Utf8Character
{
    std::size_t bytes = 0; ///< 0 for a byte that begins no valid character
    char32_t value = 0;
};

/// @param text  Not empty.
[[nodiscard]] Utf8Character FirstCharacter(std::string_view text);

/// @return true for what could steer a terminal: control characters, line separators, marks without a width and
///         marks that turn the direction of writing.
[[nodiscard]] bool SteersTerminal(char32_t character);
