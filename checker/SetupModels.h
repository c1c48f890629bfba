#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "OSCode.h"
#include "SetupInf.h"

/// Which model sections set-up takes: it follows [Manufacturer] to the decoration that fits a system best.

/// One line of [Manufacturer].
struct ModelsOfMaker
{
    std::string models;                   ///< the name without decoration
    std::vector<std::string> decorations; ///< such as "NTamd64.6.1"

    /// @return the names of all its model sections.
    [[nodiscard]] std::vector<std::string> SectionNames() const;
};

[[nodiscard]] std::vector<ModelsOfMaker> MakersOf(const SetupInf& inf);

/// A system as set-up knows it, in one of the products that it exists as.
struct SetupSystem
{
    std::string_view processor; ///< "amd64", "ia64" or "x86"
    uint32_t majorVersion = 0;
    uint32_t minorVersion = 0;
    uint8_t productType = 0;
};

/// @return a system's products: workstation, server, domain controller. The 6.2 systems for x64 share one section.
[[nodiscard]] std::vector<SetupSystem> ProductsOf(OSCode system, const SystemFacts& facts);

/// @param makers  Of the INF.
/// @return the model sections that set-up would search on the system, one for each maker that has one. Where a
///         decoration asks for a suite of products, which nobody can know here, both answers are in the list.
[[nodiscard]] std::vector<std::string> SectionsOfSetup(const SetupInf& inf, const std::vector<ModelsOfMaker>& makers,
                                                       const SetupSystem& system);
