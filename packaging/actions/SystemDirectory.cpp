#include "SystemDirectory.h"

#include <windows.h>

#include <array>

std::string SystemDirectory()
{
    std::array<char, MAX_PATH> path{};
    GetSystemDirectoryA(path.data(), MAX_PATH);
    return path.data();
}
