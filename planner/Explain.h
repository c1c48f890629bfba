#pragma once

#include <string>
#include <string_view>

#include "DeviceQuery.h"
#include "DeviceSearcher.h"
#include "KitFolder.h"
#include "Plan.h"
#include "TextStyle.h"

/// @return the whole way of a device as a story, step by step.
[[nodiscard]] std::string ExplainDevice(const MachinePlan& plan, const FoundDevice& device, const MachinePaths& paths,
                                        const TextStyle& style);

/// Finds the first thing that kept an INF from winning a device.
/// @param inf      A file name, or the end of a path with slashes or backslashes; letter case does not count.
/// @param problem  Receives, in one line, why `inf` does not name one INF.
/// @return one line; empty when there is a problem.
[[nodiscard]] std::string WhyNot(const MachinePlan& plan, const DevicePlan& device, std::string_view inf,
                                 FolderKitSource& source, const SearchTerms& terms, std::string& problem);
