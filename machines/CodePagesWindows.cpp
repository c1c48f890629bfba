#include <windows.h>

#include "CodePages.h"

std::string InCodePage(std::u16string_view text, uint32_t codePage)
{
    const std::wstring wide(text.begin(), text.end());
    const int units = static_cast<int>(wide.size());
    const UINT known = IsValidCodePage(codePage) != FALSE ? codePage : CP_ACP;
    const int needed = WideCharToMultiByte(known, 0, wide.data(), units, nullptr, 0, nullptr, nullptr);
    std::string bytes(needed > 0 ? static_cast<std::size_t>(needed) : 0, '\0');
    if (needed > 0) {
        WideCharToMultiByte(known, 0, wide.data(), units, bytes.data(), needed, nullptr, nullptr);
    }
    return bytes;
}
