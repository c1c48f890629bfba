#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "MachinePaths.h"

/// Where files of the machine are here, as MachinePaths finds them. Each folder is listed once: thousands of files of a
/// kit are looked for in a few folders.
class FoundFiles
{
public:
    /// @param paths  Must outlive the object.
    explicit FoundFiles(const MachinePaths& paths) : m_paths(paths) {}

    /// @param path  Full path on the machine.
    /// @return where it is here; none when it does not exist.
    [[nodiscard]] const std::optional<std::filesystem::path>& Find(const std::string& path);

private:
    struct Folder
    {
        std::optional<std::filesystem::path> here;
        std::vector<std::string> names;
    };
    [[nodiscard]] const Folder& FolderOf(const std::string& directory);
    [[nodiscard]] std::optional<std::filesystem::path> Look(const std::string& path);

    const MachinePaths& m_paths;
    std::unordered_map<std::string, Folder> m_folders;
    std::unordered_map<std::string, std::optional<std::filesystem::path>> m_files;
};
