#include "CharacterRule.h"

#include <algorithm>

namespace {
bool ContinuesUtf8(char byte)
{
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

/// @return the number of bytes of the character that `first` starts; 1 for a byte that starts none.
std::size_t Utf8BytesFrom(unsigned char first)
{
    if (first >= 0xC2 && first <= 0xDF) {
        return 2;
    }
    if (first >= 0xE0 && first <= 0xEF) {
        return 3;
    }
    return first >= 0xF0 && first <= 0xF4 ? 4 : 1;
}
} // namespace

std::size_t CharacterRule::FirstCharacterBytes(std::string_view text) const
{
    const auto first = static_cast<unsigned char>(text.front());
    if (m_isLeadByte != nullptr) {
        return m_isLeadByte(first) && text.size() > 1 ? 2 : 1;
    }
    const std::string_view character = text.substr(0, Utf8BytesFrom(first));
    return static_cast<std::size_t>(std::find_if_not(character.begin() + 1, character.end(), ContinuesUtf8) -
                                    character.begin());
}
