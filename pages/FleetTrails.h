#pragma once

#include <string>

#include "FleetReport.h"
#include "HtmlWriter.h"

/// The part of the page that says why: for each system the way of each adapter to its driver, and the files that were
/// searched. A trail's place in the page is "#w" and its number.
void WriteTrails(HtmlWriter& html, const FleetReport& report);

/// @return "Drv/Win8x64/ngea63x64.inf, 11.4.63.0", or that there is no driver.
[[nodiscard]] std::string DriverOf(const SearchOutcome& search, const MachinePaths& paths);

/// @return the number of a driver's version, "11.4.63.0" of "10/01/2012,11.4.63.0"; the whole text when it has no date.
[[nodiscard]] std::string_view VersionIn(std::string_view driverVersion);
