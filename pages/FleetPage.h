#pragma once

#include <cstdint>
#include <ctime>
#include <optional>
#include <string>
#include <vector>

#include "FleetReport.h"

/// Something that a check of the kit found.
struct FleetFinding
{
    std::string id;
    Severity severity = Severity::Warning;
    std::string file;
    std::size_t line = 0; ///< 0 when it concerns no line
    std::string harm;
    std::string cure;
};

/// What the page says beside the machines.
struct FleetPageFacts
{
    std::string kit;      ///< as the user named it
    std::string oldKit;   ///< empty when nothing is compared
    std::string setupDir; ///< on the machines
    std::string reader;
    std::optional<std::time_t> date; ///< the page tells no time of its own: the same input makes the same bytes
    std::vector<Diagnostic> kitRemarks;
    std::vector<FleetFinding> findings; ///< without any the page has no such section
};

/// @param report  Finished.
/// @return one HTML file that needs nothing else: neither a network nor, for its content, a script.
[[nodiscard]] std::string FleetPage(const FleetReport& report, const FleetPageFacts& facts);
