#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "ResultRecords.h"
#include "StepRequest.h"

/// How waiting for a program that was started ended.
struct ProgramEnd
{
    enum class Kind
    {
        Ended,
        NotStarted,
        /// The time limit passed. The program was left running.
        StillRunning,
        /// The user cancelled the installation. The program was left running.
        Cancelled,
    };
    Kind kind = Kind::Ended;
    /// The exit code, or for a program that was not started the system's error.
    std::uint32_t code = 0;
};

/// What a step answers the engine.
enum class StepOutcome
{
    Done,
    Failed,
    Cancelled,
};

/// Whether the step has failed: the program did not run to its end, refused to start its work, or recorded a failure. A
/// run that recorded nothing found no adapter of its kind, which is no failure.
[[nodiscard]] bool StepHasFailed(const ProgramEnd& end, const ResultRecords& records);

/// A failure fails the package only when the caller asked for that. A program that still runs always does: nobody knows
/// yet what becomes of the drivers, and the package must not be taken for installed.
[[nodiscard]] StepOutcome DecideStep(const StepRequest& request, const ProgramEnd& end, const ResultRecords& records);

/// The lines that the installation log gets after the step: how the program ended, what it recorded, and for a failure
/// whether the package fails with it. A program that was left running has no result yet: the lines say what may still
/// be going on instead.
[[nodiscard]] std::vector<std::string> StepReport(const StepRequest& request, const ProgramEnd& end,
                                                  const ResultRecords& records);

/// The error that a failed step shows.
[[nodiscard]] std::string StepError(const StepRequest& request, const ProgramEnd& end);

[[nodiscard]] bool RestartIsNeeded(const ResultRecords& records);

/// The line of the log that says whether a restart is asked for, and who recorded that it is needed.
[[nodiscard]] std::string RestartReport(const ResultRecords& records);
