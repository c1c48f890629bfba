#include "CompanionFiles.h"

#include <windows.h>

#include <algorithm>
#include <array>

std::string BuiltFile(const std::string& relative)
{
    std::array<char, MAX_PATH> program{};
    GetModuleFileNameA(nullptr, program.data(), MAX_PATH);
    std::string directory(program.data());
    directory.erase(directory.rfind('\\'));
    std::array<char, MAX_PATH> full{};
    GetFullPathNameA((directory + "\\..\\" + relative).c_str(), MAX_PATH, full.data(), nullptr);
    return full.data();
}

std::vector<std::string> FilesIn(const std::string& directory, const std::string& pattern)
{
    std::vector<std::string> names;
    WIN32_FIND_DATAA found{};
    const HANDLE search = FindFirstFileA((directory + "\\" + pattern).c_str(), &found);
    if (search == INVALID_HANDLE_VALUE) {
        return names;
    }
    do {
        names.emplace_back(found.cFileName);
    } while (FindNextFileA(search, &found));
    FindClose(search);
    std::sort(names.begin(), names.end());
    return names;
}
