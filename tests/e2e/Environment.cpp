#include "Environment.h"

#include <windows.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <stdexcept>

#include "Handles.h"

namespace {
std::string FromEnvironment(const char* name)
{
    const char* value = std::getenv(name);
    if (value == nullptr || *value == '\0') {
        throw std::runtime_error(std::string(name) + " is not set");
    }
    std::string path = value;
    std::ranges::replace(path, '/', '\\');
    while (path.ends_with('\\')) {
        path.pop_back();
    }
    return path;
}
} // namespace

std::string DistFolder()
{
    return FromEnvironment("MORVIX_DIST");
}

std::string DoublesFolder()
{
    return FromEnvironment("MORVIX_DOUBLES");
}

std::string TracesFolder()
{
    std::array<char, MAX_PATH> path{};
    GetModuleFileNameA(nullptr, path.data(), path.size());
    const std::string program = path.data();
    return program.substr(0, program.rfind('\\')) + "\\traces";
}

std::string SystemDirectory()
{
    std::array<char, MAX_PATH> path{};
    GetSystemDirectoryA(path.data(), path.size());
    return path.data();
}

std::string WindowsDirectory()
{
    std::array<char, MAX_PATH> path{};
    GetWindowsDirectoryA(path.data(), path.size());
    return path.data();
}

std::string DriverPath(const std::string& fileName)
{
    return SystemDirectory() + "\\drivers\\" + fileName;
}

std::vector<std::string> FilesMatching(const std::string& pattern)
{
    std::vector<std::string> names;
    WIN32_FIND_DATAA found = {};
    const HANDLE search = FindFirstFileA(pattern.c_str(), &found);
    if (search == INVALID_HANDLE_VALUE) {
        return names;
    }
    do {
        names.emplace_back(found.cFileName);
    } while (FindNextFileA(search, &found) != FALSE);
    FindClose(search);
    return names;
}

std::string UpperCase(std::string text)
{
    std::ranges::transform(text, text.begin(),
                           [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c; });
    return text;
}

std::string FileVersionOf(const std::string& path)
{
    DWORD ignored = 0;
    std::vector<char> block(GetFileVersionInfoSizeA(path.c_str(), &ignored));
    VS_FIXEDFILEINFO* info = nullptr;
    UINT bytes = 0;
    if (block.empty() ||
        GetFileVersionInfoA(path.c_str(), 0, static_cast<DWORD>(block.size()), block.data()) == FALSE ||
        VerQueryValueA(block.data(), "\\", reinterpret_cast<void**>(&info), &bytes) == FALSE) {
        return "<none>";
    }
    return std::to_string(HIWORD(info->dwFileVersionMS)) + "." + std::to_string(LOWORD(info->dwFileVersionMS)) + "." +
           std::to_string(HIWORD(info->dwFileVersionLS)) + "." + std::to_string(LOWORD(info->dwFileVersionLS));
}

std::string ResourceText(unsigned id, unsigned short language)
{
    const std::string path = DistFolder() + "\\MorvixRes.dll";
    const UniqueLibrary library(LoadLibraryExA(path.c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE));
    // Strings are in blocks of 16, each a length in characters followed by the characters.
    const HRSRC found = library ? FindResourceExA(library.get(), reinterpret_cast<LPCSTR>(RT_STRING),
                                                  MAKEINTRESOURCEA(id / 16 + 1), language)
                                : nullptr;
    if (found == nullptr) {
        throw std::runtime_error("no text " + std::to_string(id) + " in " + path);
    }
    const auto* at = static_cast<const WCHAR*>(LockResource(LoadResource(library.get(), found)));
    for (unsigned before = 0; before < id % 16; ++before) {
        at += 1 + *at;
    }
    std::array<char, 1024> text{};
    if (*at == 0 || WideCharToMultiByte(CP_ACP, 0, at + 1, *at, text.data(), text.size() - 1, nullptr, nullptr) == 0) {
        throw std::runtime_error("text " + std::to_string(id) + " is empty in " + path);
    }
    return text.data();
}
