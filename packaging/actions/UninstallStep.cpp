#include "UninstallStep.h"

#include <string>

#include "ChildProcess.h"
#include "Handles.h"
#include "RecordNames.h"
#include "SystemDirectory.h"
#include "UninstallPlan.h"

// GCOVR_EXCL_START: needs the Windows Installer engine, which runs no counting build; package_lifetime runs it
namespace {
bool Exists(const std::string& path)
{
    return GetFileAttributesA(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

StepOutcome RunUninstaller(const InstallerSession& session, const UninstallPlan& plan, std::uint32_t limitSeconds)
{
    if (!Exists(plan.uninstaller)) {
        session.Log("there is no uninstaller " + plan.uninstaller);
        return StepOutcome::Done;
    }
    session.Log("running \"" + plan.uninstaller + "\" " + plan.arguments + ", at most " + std::to_string(limitSeconds) +
                " seconds");
    const ProgramEnd end = session.RunAndReport({plan.uninstaller, plan.arguments, SystemDirectory()}, limitSeconds);
    switch (end.kind) {
        case ProgramEnd::Kind::Ended:
            session.Log("the uninstaller ended with exit code " + std::to_string(static_cast<int>(end.code)));
            return StepOutcome::Done;
        case ProgramEnd::Kind::NotStarted:
            session.Log("the uninstaller cannot be started: error " + std::to_string(end.code));
            return StepOutcome::Done;
        case ProgramEnd::Kind::Cancelled:
            session.Log("the removal was cancelled and the uninstaller left running: it may still be removing drivers");
            return StepOutcome::Cancelled;
        case ProgramEnd::Kind::StillRunning:
            break;
    }
    session.ReportError(UninstallTimeError(limitSeconds));
    return StepOutcome::Failed;
}

void RemoveRegistration()
{
    HKEY opened = nullptr;
    if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, kRegistrationKey, 0, KEY_SET_VALUE, &opened) == ERROR_SUCCESS) {
        const UniqueRegKey key(opened);
        RegDeleteValueA(key.get(), kRegistrationValue);
    }
}
} // namespace

StepOutcome UninstallDrivers(const InstallerSession& session, std::uint32_t limitSeconds)
{
    const UninstallPlan plan = PlanUninstall(SystemDirectory());
    if (const StepOutcome outcome = RunUninstaller(session, plan, limitSeconds); outcome != StepOutcome::Done) {
        return outcome;
    }
    if (Exists(plan.dataFile)) {
        if (DeleteFileA(plan.dataFile.c_str()) == FALSE) {
            session.Log("cannot remove " + plan.dataFile + ": error " + std::to_string(GetLastError()));
            return StepOutcome::Done;
        }
        session.Log("removed " + plan.dataFile);
    }
    RemoveRegistration();
    return StepOutcome::Done;
}
// GCOVR_EXCL_STOP
