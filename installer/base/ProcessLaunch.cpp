#include "ProcessLaunch.h"

#include <windows.h>

#include <array>
#include <cstddef>
#include <cstdio>
#include <utility>

#include "EqualsIgnoringCase.h"
#include "LastError.h"
#include "ProcessStart.h"
#include "SystemDirectory.h"
#include "Trace.h"

namespace {
constexpr std::size_t kUninstallCommandBytes = 276;

enum class WaitTrace
{
    Quiet,
    AroundTheWait,
};

int StartAndWait(std::string commandLine, WaitTrace waitTrace)
{
    const auto started = StartProcess({.commandLine = std::move(commandLine)});
    if (!started) {
        const DWORD error = GetLastError();
        Trace("CreateProcess() error (path too long?)");
        SetLastError(error);
        PrintGetLastErrorMessage();
        return -1;
    }
    if (waitTrace == WaitTrace::AroundTheWait) {
        Trace("waiting for process to exit");
    }
    WaitForSingleObject(started->process.get(), INFINITE);
    if (waitTrace == WaitTrace::AroundTheWait) {
        Trace("done waiting for process to exit\n");
    }
    return 0;
}
} // namespace

int LaunchAppandWait(std::string commandLine)
{
    Trace("Entering - LaunchAppandWait");
    Trace("LaunchAppandWait(),  ", commandLine, "\n");
    std::array<char, MAX_PATH> directory{};
    GetCurrentDirectoryA(MAX_PATH, directory.data());
    Trace("current directory:  ", directory.data(), "\n");
    return StartAndWait(std::move(commandLine), WaitTrace::AroundTheWait);
}

int UninstallAppandWait(std::string commandLine)
{
    Trace("Entering - UninstallAppandWait");
    return StartAndWait(std::move(commandLine), WaitTrace::Quiet);
}

int DoUninstall(const DriverInstallRecord& record)
{
    Trace("Entering - DoUninstall");
    const std::string family = FamilyOf(record);
    const bool is9x = EqualsIgnoringCase(family, kFamilyWindows98) || EqualsIgnoringCase(family, kFamilyWindowsMe);
    const std::string directory = SystemDirectory();
    const std::string path = directory + (is9x ? R"(\Kelsdel.exe)" : R"(\Tavunstl.exe)");
    Trace("uninstall app: ", path, "\n");

    WIN32_FIND_DATAA found{};
    // The search stays open for the rest of the run: one handle per uninstall, by design.
    const HANDLE search = directory.empty() ? INVALID_HANDLE_VALUE : FindFirstFileA(path.c_str(), &found);
    if (search == INVALID_HANDLE_VALUE) {
        Trace("unable to find uninstall app\n");
        return 0;
    }
    std::array<char, kUninstallCommandBytes> command{};
    std::snprintf(command.data(), command.size(), "\"%s\" /nogui", path.c_str());
    UninstallAppandWait(command.data());
    return 1;
}
