#pragma once

#include <string>

/// Makes every single call of every scenario fail, and every single request for memory, and prints what does not end as
/// its verdict says. Calls between two that a verdict names fare like the one before them.
/// @param scenario  The only one, or an empty text for all.
/// @return 0 when all did.
int EveryCall(const std::string& scenario);

/// Makes every call of a scenario fail and writes down what comes of it beside the kept verdicts.
int WriteDown(const std::string& scenario);

/// Prints what a run without a fault does and which calls it makes.
int Show(const std::string& scenario);
