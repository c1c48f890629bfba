#pragma once

#include <vector>

#include "Machine.h"
#include "Plan.h"

/// @return the installer's reasons to restart after a run, as far as a description of the machine says.
[[nodiscard]] std::vector<RestartAnswer> RestartFindings(const Machine& machine, const MachinePlan& plan);
