#include "UninstallStep.h"

#include <array>
#include <string>

#include "ChildProcess.h"
#include "Handles.h"
#include "UninstallPlan.h"

// GCOVR_EXCL_START: needs the Windows Installer engine, which runs no counting build; package_lifetime runs it
namespace {
constexpr char kRegistrationKey[] = R"(SOFTWARE\Norda\Tavunstl\Dins)";
constexpr char kRegistrationValue[] = "Morvix.din";

std::string SystemDirectory()
{
    std::array<char, MAX_PATH> path{};
    GetSystemDirectoryA(path.data(), MAX_PATH);
    return path.data();
}

bool Exists(const std::string& path)
{
    return GetFileAttributesA(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

void RunUninstaller(const InstallerSession& session, const UninstallPlan& plan)
{
    if (!Exists(plan.uninstaller)) {
        session.Log("there is no uninstaller " + plan.uninstaller);
        return;
    }
    session.Log("running " + plan.command);
    const ProgramEnd end = RunAndWait(plan.command, {}, INFINITE);
    session.Log(end.kind == ProgramEnd::Kind::Ended
                    ? "the uninstaller ended with exit code " + std::to_string(static_cast<int>(end.code))
                    : "the uninstaller cannot be started: error " + std::to_string(end.code));
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

void UninstallDrivers(const InstallerSession& session)
{
    const UninstallPlan plan = PlanUninstall(SystemDirectory());
    RunUninstaller(session, plan);
    if (Exists(plan.dataFile)) {
        if (DeleteFileA(plan.dataFile.c_str()) == FALSE) {
            session.Log("cannot remove " + plan.dataFile + ": error " + std::to_string(GetLastError()));
            return;
        }
        session.Log("removed " + plan.dataFile);
    }
    RemoveRegistration();
}
// GCOVR_EXCL_STOP
