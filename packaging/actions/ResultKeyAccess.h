#pragma once

#include "ResultRecords.h"

/// Deletes failures and the restart mark of earlier runs from the result key, and the installer library's restart mark,
/// so that those found after the step are from this step. Successes of earlier runs stay, as when the program runs by
/// itself.
void ForgetEarlierFailures();

/// Reads what the program and the installer library have recorded; empty records when neither has a key.
[[nodiscard]] ResultRecords ReadResultRecords();
