#include "NetInstTrace.h"

#include <windows.h>

#include <array>
#include <cstdarg>
#include <cstdio>

#include "Handles.h"
#include "RecordNames.h"

void NetInstTrace(const char* format, ...) noexcept
{
    HKEY opened = nullptr;
    if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, kTraceSwitchKey, 0, KEY_QUERY_VALUE, &opened) != ERROR_SUCCESS) {
        return;
    }
    const UniqueRegKey key(opened);
    // Room for a hardware ID and an INF path.
    std::array<char, 1024> line{};
    constexpr std::size_t kPrefixChars = sizeof("NetInst: ") - 1;
    std::snprintf(line.data(), line.size(), "NetInst: ");
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(line.data() + kPrefixChars, line.size() - kPrefixChars, format, arguments);
    va_end(arguments);
    OutputDebugStringA(line.data());
}
