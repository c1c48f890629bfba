#pragma once

#include <string>

/// What a removal does in the system directory.
struct UninstallPlan
{
    /// The maker's uninstaller and the command that runs it without its user interface.
    std::string uninstaller;
    std::string command;
    /// The copy of the kit's uninstall data that the program has laid down for it.
    std::string dataFile;
};

/// @param systemDirectory  Without a trailing backslash.
[[nodiscard]] UninstallPlan PlanUninstall(const std::string& systemDirectory);
