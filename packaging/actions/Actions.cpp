// The entry points that the package names. Each gets the engine's handle of its step and returns ERROR_SUCCESS,
// ERROR_INSTALL_FAILURE to stop the installation, or ERROR_INSTALL_USEREXIT when the user has cancelled it.

#include <exception>
#include <optional>
#include <string>

#include "CallerRights.h"
#include "InstallerSession.h"
#include "RecordRollback.h"
#include "ResultKeyAccess.h"
#include "StepReport.h"
#include "StepRequest.h"
#include "SystemDirectory.h"
#include "UninstallPlan.h"
#include "UninstallStep.h"

namespace {
UINT AnswerTo(StepOutcome outcome)
{
    switch (outcome) {
        case StepOutcome::Done:
            return ERROR_SUCCESS;
        case StepOutcome::Cancelled:
            return ERROR_INSTALL_USEREXIT;
        case StepOutcome::Failed:
            break;
    }
    return ERROR_INSTALL_FAILURE;
}

UINT NoteAdministrator(const InstallerSession& session)
{
    if (CallerIsAdministrator()) {
        session.SetProperty("CallerIsAdministrator", "1");
    } else {
        session.Log(
            "started without administrator rights: a repair leaves the driver step out, and INSTALLDIR is ignored");
    }
    return ERROR_SUCCESS;
}

UINT SaveForRollback(const InstallerSession& session)
{
    const std::string snapshot = EncodeSnapshot(TakeSnapshot(PlanUninstall(SystemDirectory()).dataFile));
    session.SetProperty("UndoRunMorvix", snapshot);
    session.SetProperty("UndoRunUninstaller", snapshot);
    session.AnnounceWait();
    return ERROR_SUCCESS;
}

UINT PutBackRecords(const InstallerSession& session)
{
    const std::optional<RecordSnapshot> snapshot = DecodeSnapshot(session.StepData());
    if (!snapshot) {
        session.Log("cannot be rolled back: nothing is known of the records before the step");
        return ERROR_SUCCESS;
    }
    for (const std::string& line : RestoreSnapshot(*snapshot, PlanUninstall(SystemDirectory()).dataFile)) {
        session.Log(line);
    }
    session.Log("cannot be rolled back: a driver that was bound to an adapter, or removed from it");
    return ERROR_SUCCESS;
}

UINT RunDriverStep(const InstallerSession& session)
{
    const std::optional<StepRequest> request = ReadStepRequest(session.StepData());
    if (!request) {
        session.ReportError("the driver step got no program");
        return ERROR_INSTALL_FAILURE;
    }
    const std::string arguments = StepArguments(*request);
    session.Log("running \"" + request->program + "\" " + arguments + ", at most " +
                std::to_string(request->timeLimitSeconds) + " seconds");
    ForgetEarlierFailures();
    const ProgramEnd end = session.RunAndReport({request->program, arguments, FolderOfProgram(request->program)},
                                                request->timeLimitSeconds);
    const ResultRecords records = ReadResultRecords();
    for (const std::string& line : StepReport(*request, end, records)) {
        session.Log(line);
    }
    const StepOutcome outcome = DecideStep(*request, end, records);
    if (outcome == StepOutcome::Failed) {
        session.ReportError(StepError(*request, end));
    }
    return AnswerTo(outcome);
}

UINT PassRestartOn(const InstallerSession& session)
{
    const ResultRecords records = ReadResultRecords();
    session.Log(RestartReport(records));
    if (!RestartIsNeeded(records)) {
        return ERROR_SUCCESS;
    }
    if (const UINT error = session.AskForRestart(); error != ERROR_SUCCESS) {
        session.Log("the restart cannot be asked for: error " + std::to_string(error));
    }
    return ERROR_SUCCESS;
}

/// No exception may reach the engine.
template <class Step>
UINT Run(MSIHANDLE handle, Step step) noexcept
{
    try {
        const InstallerSession session(handle);
        try {
            return step(session);
        } catch (const std::exception& error) {
            session.ReportError(error.what());
        }
    } catch (...) {
    }
    return ERROR_INSTALL_FAILURE;
}
} // namespace

/// Sets CallerIsAdministrator to 1 for an administrator. Runs with the rights of the user who started the installation,
/// while the script is written. The engine's own properties do not help: since Vista, AdminUser follows Privileged, and
/// Privileged is set for everybody who repairs a package that an administrator installed.
extern "C" UINT __stdcall CheckCaller(MSIHANDLE handle)
{
    return Run(handle, NoteAdministrator);
}

/// Saves what the steps may change, for the rollback. Runs while the script is written.
extern "C" UINT __stdcall SaveRecords(MSIHANDLE handle)
{
    return Run(handle, SaveForRollback);
}

/// Restores the records, as a rollback of the installation script.
extern "C" UINT __stdcall RestoreRecords(MSIHANDLE handle)
{
    return Run(handle, PutBackRecords);
}

/// Runs the program, as a step of the installation script with the rights of the system.
extern "C" UINT __stdcall RunMorvix(MSIHANDLE handle)
{
    return Run(handle, RunDriverStep);
}

/// Runs after the installation script: only there does the engine accept a request for a restart.
extern "C" UINT __stdcall AskForRestart(MSIHANDLE handle)
{
    return Run(handle, PassRestartOn);
}

/// Runs the uninstaller, as a step of the removal with the rights of the system.
extern "C" UINT __stdcall RunUninstaller(MSIHANDLE handle)
{
    return Run(handle, [](const InstallerSession& session) {
        return AnswerTo(UninstallDrivers(session, ReadTimeLimit(session.StepData())));
    });
}
