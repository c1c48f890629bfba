#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "StepReport.h"

/// A program to start.
struct ProgramStart
{
    /// Full path: no directory is searched for it.
    std::string program;
    std::string arguments;
    /// Its current directory.
    std::string directory;
};

/// Called about once a second while the program runs.
/// @param seconds  Time that the program has taken so far.
/// @return false when the installation was cancelled.
using WaitObserver = std::function<bool(std::uint32_t seconds)>;

/// Runs a program and waits for it. A program that takes longer than the limit, or whose installation is cancelled, is
/// left running: it may be in the middle of a device installation.
/// @param limitSeconds  Longest time to wait, at most kLongestTimeLimitSeconds.
[[nodiscard]] ProgramEnd RunAndWait(const ProgramStart& start, std::uint32_t limitSeconds,
                                    const WaitObserver& observer);
