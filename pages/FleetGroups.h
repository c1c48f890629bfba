#pragma once

#include "FleetReport.h"
#include "HtmlWriter.h"

/// The table of the fleet's groups, those that need somebody first, each with its machines. A group is a <tbody> of two
/// rows, which are sorted and filtered together.
void WriteGroups(HtmlWriter& html, const FleetReport& report);
