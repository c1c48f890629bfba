#pragma once

#include <windows.h>

#include <string>
#include <vector>

#include "ChildProcess.h"
#include "ScratchDirectory.h"

/// A program in a folder of its own that runs until it is let go.
class HeldProgram
{
public:
    HeldProgram();
    /// Lets every copy that runs go and waits for its end.
    ~HeldProgram();
    HeldProgram(const HeldProgram&) = delete;
    HeldProgram& operator=(const HeldProgram&) = delete;

    [[nodiscard]] ProgramStart Start() const;

    /// @return the copies of it that this process has started and that still run.
    [[nodiscard]] static std::vector<DWORD> RunningChildren();

private:
    ScratchDirectory m_scratch;
    std::string m_program;
};
