#pragma once

#include "ResultRecords.h"

/// Takes the failures and the restart mark of earlier runs off the result key, and the installer library's restart
/// mark, so that what is found after the step is of this step. Successes of earlier runs stay, as they do when the
/// program runs by itself.
void ForgetEarlierFailures();

/// Reads what the program and the installer library have recorded; empty records when neither has a key.
[[nodiscard]] ResultRecords ReadResultRecords();
