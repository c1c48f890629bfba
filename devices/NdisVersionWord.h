#pragma once

#include <cstdint>

/// @param versionWord  The network driver interface's version: major number in the high 16 bits, minor in the low 16; 0
///                     when it is not known.
/// @return true for 5.2 and later.
[[nodiscard]] constexpr bool IsNdisVersion52OrLater(uint32_t versionWord)
{
    const uint32_t major = versionWord >> 16;
    const uint32_t minor = versionWord & 0xFFFF;
    return major > 5 || (major == 5 && minor >= 2);
}
