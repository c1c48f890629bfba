#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "KitFolder.h"
#include "Rules.h"

/// Is a kit sound? The findings are values; nothing is printed here.

struct Finding
{
    int rule = 0;
    std::string file; ///< below the kit with slashes, such as "Drv/Win8x64/ngea.inf"; outside of it as on the machine
    std::filesystem::path here; ///< the same file on this machine; empty for one that is not here
    uint32_t line = 1;
    uint32_t column = 1;
    std::string what;                 ///< the case at hand, a clause without a full stop
    std::vector<std::string> systems; ///< sections of Morvix.ini that it concerns
    std::string key; ///< what tells the finding from others of its rule and file, whatever line it is in
};

struct KitFindings
{
    std::vector<std::string> systems; ///< sections of Morvix.ini that were checked
    std::vector<Finding> findings;    ///< by file, line and rule
};

struct CheckWish
{
    /// Sections of Morvix.ini. Empty: those of the systems that this build of the installer runs on, and those for
    /// which the kit has a directory.
    std::vector<std::string> systems;
    uint32_t codePage = 1252; ///< of the machines' 8-bit calls
};

/// @param kit    Decides what is read.
/// @param other  The same kit in the other dialect: where it would be read differently is found as well. May be null.
[[nodiscard]] KitFindings CheckKit(KitFolder& kit, KitFolder* other, const CheckWish& wish);

[[nodiscard]] const Rule& RuleOf(const Finding& finding);
