#pragma once

#include <windows.h>

#include <string>
#include <vector>

#include "ImportOverride.h"

/// How this program's own calls start programs and what they do with the handles, for the life of the object. No
/// program is started: whoever waits for it finds that it has ended. One object at a time.
class ProcessStarts
{
public:
    struct Start
    {
        std::string commandLine;
        bool namesTheProgram = true;
        bool hasSecurity = true;
        bool inherits = true;
        DWORD flags = 0;
        bool hasEnvironment = true;
        bool hasDirectory = true;
        /// The start-up record says its size and nothing else.
        bool recordIsPlain = false;
    };

    ProcessStarts();
    ~ProcessStarts();
    ProcessStarts(const ProcessStarts&) = delete;
    ProcessStarts& operator=(const ProcessStarts&) = delete;

    [[nodiscard]] static const std::vector<Start>& Starts();
    /// @return the limit of each wait for a started program, in milliseconds.
    [[nodiscard]] static const std::vector<DWORD>& WaitLimits();
    /// @return how many of the handles that came with the programs are still open.
    [[nodiscard]] static std::size_t OpenHandles();

private:
    ImportOverride m_start;
    ImportOverride m_wait;
    ImportOverride m_waitOrMessage;
    ImportOverride m_close;
};
