#pragma once

#include <string>
#include <vector>

#include "CheckKit.h"
#include "Plan.h"

/// Which findings in a kit concern a device that was planned with it.

/// A finding that names an ID concerns the devices that are searched by it. One that names none concerns the devices
/// whose INF file it is in; and if it is in Morvix.ini, the devices that get no driver.
/// @param found   In the kit that the device was planned with.
/// @param system  Section of Morvix.ini that the machine has.
/// @return the IDs of their rules, each once, in the order of the findings.
[[nodiscard]] std::vector<std::string> FindingsOf(const DevicePlan& device, const std::string& system,
                                                  const KitFindings& found, const MachinePaths& paths);
