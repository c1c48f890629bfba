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

/// A step's result for the engine.
enum class StepOutcome
{
    Done,
    Failed,
    Cancelled,
};

/// Whether the step has failed: the program did not run to its end, refused to start its work, or recorded a failure. A
/// run that recorded nothing found no adapter, which is not a failure.
[[nodiscard]] bool StepHasFailed(const ProgramEnd& end, const ResultRecords& records);

/// A failure fails the package only when the caller asked for that. A program that is still running always does: the
/// drivers' state is unknown, and the package must not count as installed.
[[nodiscard]] StepOutcome DecideStep(const StepRequest& request, const ProgramEnd& end, const ResultRecords& records);

/// The lines that the installation log gets after the step: how the program ended, what it recorded, and for a failure
/// whether the package fails with it. For a program that was left running, the lines say what may still be going on.
[[nodiscard]] std::vector<std::string> StepReport(const StepRequest& request, const ProgramEnd& end,
                                                  const ResultRecords& records);

/// The error that a failed step shows.
[[nodiscard]] std::string StepError(const StepRequest& request, const ProgramEnd& end);

[[nodiscard]] bool RestartIsNeeded(const ResultRecords& records);

/// The log line that says whether a restart is requested, and who recorded that it is needed.
[[nodiscard]] std::string RestartReport(const ResultRecords& records);
