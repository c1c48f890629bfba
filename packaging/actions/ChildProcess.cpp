#include "ChildProcess.h"

#include <windows.h>

#include <algorithm>

#include "ProcessStart.h"

namespace {
constexpr DWORD kMillisecondsPerSecond = 1000;
} // namespace

ProgramEnd RunAndWait(const ProgramStart& start, std::uint32_t limitSeconds, const WaitObserver& observer)
{
    const auto started = StartProcess({.commandLine = "\"" + start.program + "\" " + start.arguments,
                                       .program = start.program,
                                       .directory = start.directory});
    if (!started) {
        return {ProgramEnd::Kind::NotStarted, GetLastError()};
    }
    const HANDLE process = started->process.get();
    const DWORD begin = GetTickCount();
    const DWORD limit = limitSeconds * kMillisecondsPerSecond;
    // The difference is right even when the tick count wraps.
    for (DWORD elapsed = 0; elapsed < limit; elapsed = GetTickCount() - begin) {
        if (WaitForSingleObject(process, std::min(kMillisecondsPerSecond, limit - elapsed)) == WAIT_OBJECT_0) {
            DWORD exitCode = 0;
            GetExitCodeProcess(process, &exitCode);
            return {ProgramEnd::Kind::Ended, exitCode};
        }
        if (!observer((GetTickCount() - begin) / kMillisecondsPerSecond)) {
            return {ProgramEnd::Kind::Cancelled, 0};
        }
    }
    return {ProgramEnd::Kind::StillRunning, 0};
}
