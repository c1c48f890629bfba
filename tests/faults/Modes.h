#pragma once

#include <string>

/// Set by --every-call.
extern bool everyCall;

/// Makes every call of a scenario fail and writes down what comes of it beside the kept verdicts.
int WriteDown(const std::string& scenario);

/// Prints what a run without a fault does and which calls it makes.
int Show(const std::string& scenario);
