#include "StoredInfs.h"

#include <windows.h>

#include <array>
#include <filesystem>

namespace {
std::set<std::string> InfsOfTheStore()
{
    std::array<char, MAX_PATH> windows{};
    GetWindowsDirectoryA(windows.data(), MAX_PATH);
    std::set<std::string> paths;
    std::error_code ignored;
    for (const auto& entry : std::filesystem::directory_iterator(std::string(windows.data()) + "\\inf", ignored)) {
        const std::string name = entry.path().filename().string();
        if (name.ends_with(".inf") || name.ends_with(".INF")) {
            paths.insert(entry.path().string());
        }
    }
    return paths;
}
} // namespace

StoredInfs::StoredInfs() : m_before(InfsOfTheStore()) {}

StoredInfs::~StoredInfs()
{
    for (const std::string& path : New()) {
        DeleteFileA(path.c_str());
        DeleteFileA((path.substr(0, path.size() - 3) + "pnf").c_str());
    }
}

std::vector<std::string> StoredInfs::New() const
{
    std::vector<std::string> paths;
    for (const std::string& path : InfsOfTheStore()) {
        if (!m_before.contains(path)) {
            paths.push_back(path);
        }
    }
    return paths;
}
