#pragma once

#include <array>
#include <string_view>

#include "LeadByte.h"

/// The code pages with characters of two bytes in which Windows is sold.

inline bool NoLeadBytes(unsigned char)
{
    return false;
}

inline bool IsJapaneseLeadByte(unsigned char byte)
{
    return (byte >= 0x81 && byte <= 0x9F) || (byte >= 0xE0 && byte <= 0xFC);
}

/// Both Chinese code pages, and the Korean one.
inline bool IsChineseOrKoreanLeadByte(unsigned char byte)
{
    return byte >= 0x81 && byte <= 0xFE;
}

struct CodePage
{
    int number;
    LeadByteTest isLeadByte;
    std::string_view letter; ///< of two bytes; the second looks like a backslash where the code page has such letters
};

inline constexpr CodePage kKorean{949, IsChineseOrKoreanLeadByte, "\xB0\xA1"};

/// Those in which the second byte of a letter may look like a backslash.
inline constexpr std::array<CodePage, 3> kBackslashCodePages{{
    {932, IsJapaneseLeadByte, "\x83\\"},
    {936, IsChineseOrKoreanLeadByte, "\x81\\"},
    {950, IsChineseOrKoreanLeadByte, "\xA5\\"},
}};

inline constexpr std::array<CodePage, 4> kCodePages{kBackslashCodePages[0], kBackslashCodePages[1],
                                                    kBackslashCodePages[2], kKorean};
