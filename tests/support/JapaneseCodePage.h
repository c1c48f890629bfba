#pragma once

#include <windows.h>

#include "ImportOverride.h"

/// A letter of two bytes in the Japanese code page; the second byte looks like a backslash.
inline constexpr char kJapaneseLetter[] = "\x83\\";

/// While the object lives, this program takes the system's code page for the Japanese one.
class JapaneseCodePage
{
private:
    static BOOL WINAPI IsLeadByte(BYTE byte)
    {
        return (byte >= 0x81 && byte <= 0x9F) || (byte >= 0xE0 && byte <= 0xFC) ? TRUE : FALSE;
    }
    const ImportOverride m_leadBytes{"IsDBCSLeadByte", reinterpret_cast<void*>(IsLeadByte)};
};
