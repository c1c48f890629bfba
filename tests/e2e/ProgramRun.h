#pragma once

#include <windows.h>

#include <string>
#include <vector>

#include "DebugOutput.h"
#include "Handles.h"

/// What a run left behind.
struct FinishedRun
{
    int exitCode = 0;
    /// The debugger output, line by line as it was sent: each begins with "Morvix: ".
    std::vector<std::string> lines;
    /// The lines that NetInst.dll sent itself: each begins with "NetInst: ".
    std::vector<std::string> netInstLines;

    /// How often `message` (without "Morvix: ") was traced.
    [[nodiscard]] size_t Count(const std::string& message) const;
    [[nodiscard]] bool Traced(const std::string& message) const { return Count(message) != 0; }
    /// The messages from the first `from` to the first `to` after it, both included; empty when either is missing.
    [[nodiscard]] std::vector<std::string> Between(const std::string& from, const std::string& to) const;
    /// The messages without "Morvix: ". A line without that start is kept as it is, so that a comparison shows it.
    [[nodiscard]] std::vector<std::string> Messages() const;
};

struct StartedProgram
{
    UniqueHandle process;
    DWORD processId = 0;
};

/// Starts a program; throws std::runtime_error when that fails.
/// @param program      Full path.
/// @param commandLine  What the program finds as its command line.
[[nodiscard]] StartedProgram StartProgram(const std::string& program, std::string commandLine,
                                          const std::string& workingDirectory);

/// One process of the program under test. The destructor ends a process that is still running.
class ProgramRun
{
public:
    /// Longest time a run may take, in milliseconds.
    static constexpr DWORD kLimit = 60000;

    /// @param program   Full path of the program.
    /// @param calledAs  The name that the program finds as its own on the command line.
    ProgramRun(DebugOutput& output, const std::string& program, const std::string& calledAs,
               const std::string& arguments, const std::string& workingDirectory);
    ~ProgramRun();
    ProgramRun(const ProgramRun&) = delete;
    ProgramRun& operator=(const ProgramRun&) = delete;

    [[nodiscard]] DWORD ProcessId() const { return m_started.processId; }
    [[nodiscard]] bool StillRuns() const;

    /// Waits until the program ends by itself. Throws std::runtime_error when it does not within the limit.
    FinishedRun Finish();

    /// The trace so far.
    [[nodiscard]] FinishedRun SoFar() const;

    /// Waits until the program has traced a line that contains `text`; throws std::runtime_error when it does not come.
    void WaitForTrace(const std::string& text) const;

private:
    DebugOutput& m_output;
    const StartedProgram m_started;
};
