#pragma once

#include <windows.h>

#include <optional>
#include <string>

#include "Handles.h"

/// A process to start. It inherits no handles, and the environment and error mode of this process's own start.
struct ProcessStart
{
    std::string commandLine;    ///< program and arguments; the platform may write into it
    DWORD creationFlags = 0;    ///< of CreateProcess
    std::string program = {};   ///< full path; empty: the first word of the command line, searched for by the platform
    std::string directory = {}; ///< its current directory; empty: the caller's
};

struct StartedProcess
{
    UniqueHandle process;
    UniqueHandle mainThread;
};

/// Starts a process. Waiting is the caller's: threads with windows answer messages meanwhile, others need not.
/// @return no value when it cannot be started; the last error says why.
[[nodiscard]] std::optional<StartedProcess> StartProcess(ProcessStart start);
