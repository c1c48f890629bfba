#include "ChildProcess.h"

#include <windows.h>

#include <algorithm>

#include "Handles.h"

namespace {
constexpr DWORD kMillisecondsPerSecond = 1000;

/// @param error  Receives the system's error when the answer is null.
UniqueHandle Start(const ProgramStart& start, DWORD& error)
{
    STARTUPINFOA startup{};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION started{};
    // The platform may write into the command line.
    std::string commandLine = "\"" + start.program + "\" " + start.arguments;
    if (CreateProcessA(start.program.c_str(), commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr,
                       start.directory.c_str(), &startup, &started) == FALSE) {
        error = GetLastError();
        return nullptr;
    }
    const UniqueHandle thread(started.hThread);
    return UniqueHandle(started.hProcess);
}
} // namespace

ProgramEnd RunAndWait(const ProgramStart& start, std::uint32_t limitSeconds, const WaitObserver& observer)
{
    DWORD error = ERROR_SUCCESS;
    const UniqueHandle process = Start(start, error);
    if (!process) {
        return {ProgramEnd::Kind::NotStarted, error};
    }
    const DWORD begin = GetTickCount();
    const DWORD limit = limitSeconds * kMillisecondsPerSecond;
    // The difference is right even when the count of milliseconds starts over.
    for (DWORD elapsed = 0; elapsed < limit; elapsed = GetTickCount() - begin) {
        if (WaitForSingleObject(process.get(), std::min(kMillisecondsPerSecond, limit - elapsed)) == WAIT_OBJECT_0) {
            DWORD exitCode = 0;
            GetExitCodeProcess(process.get(), &exitCode);
            return {ProgramEnd::Kind::Ended, exitCode};
        }
        if (!observer((GetTickCount() - begin) / kMillisecondsPerSecond)) {
            return {ProgramEnd::Kind::Cancelled, 0};
        }
    }
    return {ProgramEnd::Kind::StillRunning, 0};
}
