#include "OrvCharacters.h"

#include <algorithm>

bool OrvIsTextOfType(std::string_view text, uint32_t allowed) noexcept
{
    uint32_t found = 0;
    for (const char c : text) {
        found |= OrvIsAlphabetic(c) ? kOrvAllowAlphabetic : 0U;
        found |= OrvIsNumeric(c) ? kOrvAllowNumeric : 0U;
        found |= OrvIsSymbolic(c) ? kOrvAllowSymbolic : 0U;
    }
    return (found & ~allowed) == 0;
}

bool OrvIsTextHexadecimal(std::string_view text) noexcept
{
    return std::all_of(text.begin(), text.end(), OrvIsHexadecimal);
}
