#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "ResultRecords.h"
#include "StepRequest.h"

/// How a program that was started ended.
struct ProgramEnd
{
    enum class Kind
    {
        Ended,
        NotStarted,
        StoppedForTime,
    };
    Kind kind = Kind::Ended;
    /// The exit code, or for a program that was not started the system's error.
    std::uint32_t code = 0;
};

/// Whether the step has failed: the program did not run to its end, refused to start its work, or recorded a failure. A
/// run that recorded nothing found no adapter of its kind, which is no failure.
[[nodiscard]] bool StepHasFailed(const ProgramEnd& end, const ResultRecords& records);

/// The lines that the installation log gets when the program has ended: how it ended, what it recorded, and for a
/// failure whether the package fails with it.
[[nodiscard]] std::vector<std::string> StepReport(const StepRequest& request, const ProgramEnd& end,
                                                  const ResultRecords& records);
