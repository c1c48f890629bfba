#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Machine.h"
#include "OSCode.h"

/// What the installer would conclude about a system. Its manifest claims nothing later than Windows 8: a later system
/// reports 6.2 to it, and the installer's rules start from that.
struct SystemView
{
    SystemFacts facts;                ///< what the platform would report to the installer
    OSCode code = osUNSUPPORTED;      ///< by the installer's own rules
    std::string_view section;         ///< section of Morvix.ini; empty for a system that is not served
    std::string_view family;          ///< name in the install record; empty when the system has none
    uint32_t familyStatus = 0;        ///< of the system prober: 0 when the family is supported
    std::vector<std::string> reasons; ///< where each fact comes from, and every assumption, one line each
};

/// @return no value when the description lacks what the rules need: MissingForView says what.
[[nodiscard]] std::optional<SystemView> ViewOfSystem(const SystemDescription& system);

/// @return in words, the facts that are missing to determine the system; empty when ViewOfSystem has a value.
[[nodiscard]] std::string MissingForView(const SystemDescription& system);

/// The version that a system reports to a program whose manifest claims Windows 8 and nothing later.
[[nodiscard]] VersionNumbers ReportedVersion(const VersionNumbers& own);
