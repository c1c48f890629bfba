// The entry points that the package names. Each gets the engine's handle of its step and answers ERROR_SUCCESS, or
// ERROR_INSTALL_FAILURE when the installation must not go on.

#include <optional>
#include <string>

#include "ChildProcess.h"
#include "InstallerSession.h"
#include "ResultKeyAccess.h"
#include "StepReport.h"
#include "StepRequest.h"
#include "UninstallStep.h"

namespace {
constexpr DWORD kMillisecondsPerSecond = 1000;

UINT RunDriverStep(const InstallerSession& session)
{
    const std::optional<StepRequest> request = ReadStepRequest(session.StepData());
    if (!request) {
        session.ReportError("the driver step got no folder");
        return ERROR_INSTALL_FAILURE;
    }
    const std::string commandLine = StepCommandLine(*request);
    session.Log("running " + commandLine + ", at most " + std::to_string(request->timeLimitSeconds) + " seconds");
    ForgetEarlierFailures();
    const ProgramEnd end = RunAndWait(commandLine, request->folder, request->timeLimitSeconds * kMillisecondsPerSecond);
    const ResultRecords records = ReadResultRecords();
    for (const std::string& line : StepReport(*request, end, records)) {
        session.Log(line);
    }
    if (!StepHasFailed(end, records) || !request->failOnFailure) {
        return ERROR_SUCCESS;
    }
    session.ReportError("the drivers were not installed");
    return ERROR_INSTALL_FAILURE;
}

UINT PassRestartOn(const InstallerSession& session)
{
    if (!ReadResultRecords().restartNeeded) {
        session.Log("RebootNeeded is not recorded: no restart");
        return ERROR_SUCCESS;
    }
    session.Log("RebootNeeded is recorded: a restart is asked for");
    if (const UINT error = session.AskForRestart(); error != ERROR_SUCCESS) {
        session.Log("the restart cannot be asked for: error " + std::to_string(error));
    }
    return ERROR_SUCCESS;
}

/// Nothing may be thrown into the engine.
template <class Step>
UINT Run(MSIHANDLE handle, Step step) noexcept
{
    try {
        return step(InstallerSession(handle));
    } catch (...) {
        return ERROR_INSTALL_FAILURE;
    }
}
} // namespace

/// Runs the program, as a step of the installation script with the rights of the system.
extern "C" UINT __stdcall RunMorvix(MSIHANDLE handle)
{
    return Run(handle, RunDriverStep);
}

/// Runs behind the installation script: only there does the engine take the wish for a restart.
extern "C" UINT __stdcall AskForRestart(MSIHANDLE handle)
{
    return Run(handle, PassRestartOn);
}

/// Runs the uninstaller, as a step of the removal with the rights of the system. What it does never stops the removal.
extern "C" UINT __stdcall RunUninstaller(MSIHANDLE handle)
{
    return Run(handle, [](const InstallerSession& session) -> UINT {
        UninstallDrivers(session);
        return ERROR_SUCCESS;
    });
}
