#include "TestFiles.h"

#include <windows.h>

#include <array>

std::string TestFile(const std::string& name)
{
    std::array<char, MAX_PATH> own{};
    GetModuleFileNameA(nullptr, own.data(), MAX_PATH);
    const std::string path = own.data();
    return path.substr(0, path.rfind('\\') + 1) + name;
}
