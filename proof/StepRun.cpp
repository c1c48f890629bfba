#include "StepRun.h"

#include <windows.h>

#include <array>

#include "Files.h"
#include "Handles.h"
#include "RunningProcesses.h"

namespace {
constexpr DWORD kLookMilliseconds = 500;
// A process that waits for a driver cannot be ended; the next step does not wait for it.
constexpr DWORD kEndLimitMilliseconds = 30000;

UniqueFile OpenForChild(const std::string& path, DWORD access, DWORD disposition)
{
    SECURITY_ATTRIBUTES inherited{
        .nLength = sizeof(inherited), .lpSecurityDescriptor = nullptr, .bInheritHandle = TRUE};
    return UniqueFile(
        CreateFileA(path.c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE, &inherited, disposition, 0, nullptr));
}

std::string Expanded(const std::string& text)
{
    std::string expanded(ExpandEnvironmentStringsA(text.c_str(), nullptr, 0) + 1, '\0');
    expanded.resize(ExpandEnvironmentStringsA(text.c_str(), expanded.data(), static_cast<DWORD>(expanded.size())) - 1);
    return expanded;
}

/// Waits for the process and keeps track of what it starts.
/// @return false when the limit was over first.
bool WaitInTime(HANDLE process, ProcessFamily& family, unsigned limitSeconds)
{
    const DWORD begin = GetTickCount();
    while (WaitForSingleObject(process, kLookMilliseconds) == WAIT_TIMEOUT) {
        family.Grow(RunningProcesses());
        if ((GetTickCount() - begin) / 1000 >= limitSeconds) {
            return false;
        }
    }
    return true;
}
} // namespace

StepEnd RunStep(const Step& step, const std::string& commandLine, const std::string& output,
                const std::function<void()>& atLimit)
{
    const UniqueFile nothing = OpenForChild("NUL", GENERIC_READ, OPEN_EXISTING);
    const UniqueFile printed = OpenForChild(output, GENERIC_WRITE, CREATE_ALWAYS);
    STARTUPINFOA startup{};
    startup.cb = sizeof(startup);
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = nothing.Get();
    startup.hStdOutput = printed.Get();
    startup.hStdError = printed.Get();
    PROCESS_INFORMATION started{};
    std::string command = Expanded(commandLine);
    StepEnd end;
    // Nobody is there to close a box about a crash: the program, which inherits this, ends at once.
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX | SEM_NOOPENFILEERRORBOX);
    if (CreateProcessA(nullptr, command.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup, &started) ==
        FALSE) {
        end.started = false;
        end.error = GetLastError();
        return end;
    }
    const UniqueHandle process(started.hProcess);
    const UniqueHandle thread(started.hThread);
    ProcessFamily family(RowOfProcess(started.dwProcessId));
    end.inTime = WaitInTime(process.get(), family, step.limitSeconds);
    if (!end.inTime) {
        atLimit();
    }
    // What a test has left running would be in the way of the next step.
    EndFamily(family);
    WaitForSingleObject(process.get(), kEndLimitMilliseconds);
    DWORD exitCode = 0;
    GetExitCodeProcess(process.get(), &exitCode);
    end.exitCode = exitCode;
    end.lastCase = LastCase(ReadWholeFile(output));
    return end;
}
