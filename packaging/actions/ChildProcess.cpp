#include "ChildProcess.h"

#include "Handles.h"

namespace {
// A process that was told to end needs a moment before its files can be removed.
constexpr DWORD kEndMilliseconds = 10000;
} // namespace

ProgramEnd RunAndWait(std::string commandLine, const std::string& directory, DWORD milliseconds)
{
    STARTUPINFOA startup{};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION started{};
    if (CreateProcessA(nullptr, commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr,
                       directory.empty() ? nullptr : directory.c_str(), &startup, &started) == FALSE) {
        return {ProgramEnd::Kind::NotStarted, GetLastError()};
    }
    const UniqueHandle process(started.hProcess);
    const UniqueHandle thread(started.hThread);
    if (WaitForSingleObject(process.get(), milliseconds) != WAIT_OBJECT_0) {
        TerminateProcess(process.get(), 1);
        WaitForSingleObject(process.get(), kEndMilliseconds);
        return {ProgramEnd::Kind::StoppedForTime, 0};
    }
    DWORD exitCode = 0;
    GetExitCodeProcess(process.get(), &exitCode);
    return {ProgramEnd::Kind::Ended, exitCode};
}
