#include "Utf8.h"

#include <cstdint>

Utf8Character FirstCharacter(std::string_view text)
{
    const auto byteAt = [text](std::size_t place) { return static_cast<uint8_t>(text[place]); };
    const uint8_t first = byteAt(0);
    if (first < 0x80) {
        return {.bytes = 1, .value = first};
    }
    const std::size_t bytes = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
    if (first < 0xC2 || first > 0xF4 || text.size() < bytes) {
        return {};
    }
    char32_t value = first & (0xFFU >> (bytes + 1));
    for (std::size_t place = 1; place < bytes; ++place) {
        if ((byteAt(place) & 0xC0U) != 0x80U) {
            return {};
        }
        value = value << 6 | (byteAt(place) & 0x3FU);
    }
    // Longer forms of short characters, halves of UTF-16 pairs, and what lies above Unicode.
    const bool invalid = (bytes == 3 && value < 0x800) || (bytes == 4 && (value < 0x10000 || value > 0x10FFFF)) ||
                         (value >= 0xD800 && value <= 0xDFFF);
    return invalid ? Utf8Character{} : Utf8Character{.bytes = bytes, .value = value};
}

bool SteersTerminal(char32_t character)
{
    return character < 0x20 || (character >= 0x7F && character < 0xA0) || character == 0xAD ||
           (character >= 0x200B && character <= 0x200F) || (character >= 0x2028 && character <= 0x202E) ||
           (character >= 0x2060 && character <= 0x206F) || character == 0xFEFF;
}
