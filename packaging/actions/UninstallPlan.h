#pragma once

#include <cstdint>
#include <string>

/// What a removal does in the system directory.
struct UninstallPlan
{
    /// Full path of the maker's uninstaller.
    std::string uninstaller;
    /// Makes it run without its user interface.
    std::string arguments;
    /// The copy of the kit's uninstall data that the program put there.
    std::string dataFile;
};

/// @param systemDirectory  Without a trailing backslash.
[[nodiscard]] UninstallPlan PlanUninstall(const std::string& systemDirectory);

/// The error of a removal whose time limit has passed.
[[nodiscard]] std::string UninstallTimeError(std::uint32_t limitSeconds);
