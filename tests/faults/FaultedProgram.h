#pragma once

#include <string>

#include "Handles.h"
#include "Outcome.h"

/// The call that is to fail in a run.
struct Fault
{
    CallName call;
    unsigned ordinal = 0;       ///< which of the calls of that name, from 1; 0 for none
    unsigned memoryRequest = 0; ///< which request for memory, from 1; 0 for none
    bool memoryIsOut = false;   ///< from then on there is only what is given back
};

/// How the program is started.
struct Start
{
    std::string folder; ///< the run folder, which holds the program under its shipped name
    std::string arguments;
    bool interactive = false;
    bool noteMemory = false;
};

/// The program with the hooks in it. One at a time on a machine.
class FaultedProgram
{
public:
    /// Longest time a run may take, in milliseconds.
    static constexpr DWORD kLimit = 40000;

    FaultedProgram();
    ~FaultedProgram();
    FaultedProgram(const FaultedProgram&) = delete;
    FaultedProgram& operator=(const FaultedProgram&) = delete;

    /// Runs the program to its end; one that does not end within the limit is ended and says so in its outcome.
    /// @return what it did. What it left on the machine is the caller's to look at.
    Outcome Run(const Start& start, const Fault& fault = {});

private:
    void LayDown(const Start& start, const Fault& fault);
    void Read(const std::string& folder, Outcome& outcome) const;

    UniqueHandle m_mapping;
    FaultChannel* m_channel = nullptr;
};

/// @return `text` with names for the places that differ from machine to machine and for line ends.
[[nodiscard]] std::string WithStandIns(std::string text, const std::string& folder);
[[nodiscard]] std::string WithoutStandIns(std::string text, const std::string& folder);
