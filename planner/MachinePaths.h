#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Where the folders of the planned machine are on this one.

/// A folder of the machine and the folder here that holds its files.
struct FolderMap
{
    std::string onMachine; ///< such as "D:\" or "\\server\share"
    std::filesystem::path here;
};

/// @return true when a path on the machine is a folder or lies below it. Letter case does not count.
[[nodiscard]] bool LiesIn(std::string_view path, std::string_view folder);

class MachinePaths
{
public:
    /// @param kit       Folder here that holds Morvix.ini. The folders above it are the ones above `setupDir`.
    /// @param setupDir  The same folder on the machine, without a trailing backslash.
    /// @param maps      Win over the kit where they name the same folder; otherwise the longest name decides.
    MachinePaths(const std::filesystem::path& kit, const std::string& setupDir, std::vector<FolderMap> maps);

    /// Letter case does not count in `path`.
    /// @return where a file or folder of the machine is here; no value when it does not exist.
    [[nodiscard]] std::optional<std::filesystem::path> Find(std::string_view path) const;

    /// @return false for a path that no map and no folder above the kit covers: nothing is known about it.
    [[nodiscard]] bool IsCovered(std::string_view path) const { return RootOf(path) != nullptr; }

    /// @return the path as the user knows it: below the kit with slashes, such as "Drv/Win8x64/ngea.inf", or the path
    ///         on the machine for everything outside of the kit.
    [[nodiscard]] std::string NameOf(std::string_view path) const;

private:
    struct Root
    {
        std::string onMachine; ///< without a trailing backslash
        std::filesystem::path here;
        bool isKit = false;
    };
    [[nodiscard]] const Root* RootOf(std::string_view path) const;

    std::vector<Root> m_roots; ///< longest name first
};

/// @return the directory of the installer on a machine without a description: deep enough for a setup INI whose base
///         is `levelsToRoot` levels above it.
[[nodiscard]] std::string AssumedSetupDir(int levelsToRoot);
