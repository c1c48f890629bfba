#pragma once

#include "FleetReport.h"
#include "HtmlWriter.h"

/// The table of adapters and systems: which driver each adapter gets where, and how many devices of the fleet do.
/// Writes nothing when the fleet has no adapter.
void WriteAdapters(HtmlWriter& html, const FleetReport& report);

/// @return what the devices of one adapter have in common, whatever their sub-system and revision:
///         "VEN_5D1A&DEV_1A2B" of a key name.
[[nodiscard]] std::string_view AdapterOf(std::string_view deviceKey);
