#include "SystemDirectory.h"

#include <windows.h>

#include <array>

std::string SystemDirectory()
{
    std::array<char, MAX_PATH> directory{};
    // For a directory that does not fit, the result is the size it needs.
    const UINT length = GetSystemDirectoryA(directory.data(), MAX_PATH);
    return length == 0 || length >= MAX_PATH ? std::string() : std::string(directory.data());
}
