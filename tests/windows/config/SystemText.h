#pragma once

#include <windows.h>

#include <array>
#include <string>

/// @return the platform's text for an error, in the user's language.
[[nodiscard]] inline std::string SystemText(DWORD error)
{
    std::array<char, 512> text{};
    FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, error, 0x400, text.data(),
                   text.size(), nullptr);
    return text.data();
}
