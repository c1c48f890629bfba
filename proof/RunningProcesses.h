#pragma once

#include <vector>

#include "ProcessFamily.h"

/// The processes that run now. The time of one that this program may not look at is 0.
[[nodiscard]] std::vector<ProcessRow> RunningProcesses();

/// The row of a process that is known to run.
[[nodiscard]] ProcessRow RowOfProcess(uint32_t id);

/// Ends all of the family that still run, and what they have started meanwhile.
void EndFamily(ProcessFamily& family);
