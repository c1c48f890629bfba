#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "Steps.h"

/// What is known of a step once its program has ended.
struct StepEnd
{
    bool started = true;
    uint32_t error = 0; ///< the system's, when it was not started
    bool inTime = true;
    uint32_t exitCode = 0;
    bool wroteResults = false;
    std::string lastCase; ///< the test that its output names last
};

enum class StepOutcome
{
    Ended, ///< its results, or its exit code, say the rest
    WantsRestart,
    Refused, ///< the program does not run on such a machine
    Crashed,
    Hung,
    NotStarted,
    Interrupted ///< the machine or the run ended in it
};

/// @param afterRestart  A step is only restarted once: a second wish is a crash.
[[nodiscard]] StepOutcome OutcomeOf(const Step& step, const StepEnd& end, bool afterRestart);

/// The word for it in steps.tsv.
[[nodiscard]] std::string_view NameOf(StepOutcome outcome);

/// What JUnit has to say of a step beside its own results, as one failed or passed case; nothing when they say it all.
[[nodiscard]] std::optional<std::string> ReportBesideResults(const Step& step, const StepEnd& end, StepOutcome outcome);

/// The results that a step has until it writes its own, so that a machine that ends in it leaves them.
[[nodiscard]] std::string InterruptedReport(const Step& step);

/// The test that was running at the end of a GoogleTest program's output; empty when there was none.
[[nodiscard]] std::string LastCase(std::string_view output);
