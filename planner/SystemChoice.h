#pragma once

#include <optional>
#include <string>

#include "Machine.h"
#include "Plan.h"

/// Which system a machine is planned for.

struct SystemWish
{
    std::string section; ///< of Morvix.ini; empty: the machine's own system
    std::string family;  ///< empty: the one that the system prober would name
};

/// @return true for a section name of a system that is served; letter case counts.
[[nodiscard]] bool IsSystemSection(std::string_view section);

/// @return the names of all sections, in the order of the systems.
[[nodiscard]] std::vector<std::string> SystemSections();

/// @param problem  Receives, without a system, what is missing; and for a system that the installer refuses, why.
/// @return no value when neither the machine's description nor the wish says which system it is.
[[nodiscard]] std::optional<PlannedSystem> ChooseSystem(const Machine& machine, const SystemWish& wish,
                                                        std::string& problem);
