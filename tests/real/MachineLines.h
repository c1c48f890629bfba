#pragma once

#include <string>
#include <vector>

/// What a run traces about the system rather than about itself: what became of the restore point, and network devices
/// that have no FCoE name.
/// @param lines  A run's debugger output.
/// @return `lines` without those.
[[nodiscard]] std::vector<std::string> WithoutMachineLines(const std::vector<std::string>& lines);
