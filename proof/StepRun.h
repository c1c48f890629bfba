#pragma once

#include <functional>
#include <string>

#include "StepOutcome.h"
#include "Steps.h"

/// Runs a step's program in the current folder, ends what it has started when it has ended or when its limit is over,
/// and says how it went, but for its results.
/// @param commandLine  The command with everything that is added to it.
/// @param output       A file for what it prints.
/// @param atLimit      Called when the limit is over, before anything is ended.
[[nodiscard]] StepEnd RunStep(const Step& step, const std::string& commandLine, const std::string& output,
                              const std::function<void()>& atLimit);
