#pragma once

#include "ResultRecords.h"

/// Takes the failures and the restart mark of earlier runs off the result key, so that what is found after the step is
/// of this step. Successes of earlier runs stay, as they do when the program runs by itself.
void ForgetEarlierFailures();

/// Reads what the program has recorded; empty records when there is no result key.
[[nodiscard]] ResultRecords ReadResultRecords();
