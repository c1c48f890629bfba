#include <windows.h>
// msi.h needs windows.h first.
#include <msi.h>

#include <iostream>
#include <string>
#include <string_view>
#include <vector>

#include "Handles.h"
#include "StandardUserToken.h"

/// Has the Windows Installer engine do what its command line, msiexec, has no words for; the end is the engine's
/// answer.
///   installer_caller LOG repair PRODUCT             repairs the whole product, as Programs and Features does
///   installer_caller LOG heal PRODUCT               repairs the feature, as the engine does for a missing key file
///   installer_caller LOG cancel PACKAGE PROPERTIES  installs, and presses Cancel when a step reports its time
///   installer_caller LOG as-user COMMAND            runs a command line without the rights of an administrator
namespace {
constexpr UINT kUsage = 0xFFFF;

/// What the engine asks of MsiReinstallFeature for a product whose key file is missing.
constexpr DWORD kSelfRepair = REINSTALLMODE_FILEMISSING | REINSTALLMODE_FILEOLDERVERSION | REINSTALLMODE_FILEVERIFY |
                              REINSTALLMODE_MACHINEDATA | REINSTALLMODE_USERDATA | REINSTALLMODE_SHORTCUT;
constexpr DWORD kRepair =
    REINSTALLMODE_FILEOLDERVERSION | REINSTALLMODE_MACHINEDATA | REINSTALLMODE_USERDATA | REINSTALLMODE_SHORTCUT;

/// The user interface: presses Cancel at the first message about the time that a step has taken.
int WINAPI CancelDuringStep(void*, UINT kind, const char* message)
{
    const std::string_view text = message == nullptr ? "" : message;
    const bool isStepTime = text.find(" of at most ") != std::string_view::npos;
    return (kind & 0xFF000000) == INSTALLMESSAGE_ACTIONDATA && isStepTime ? IDCANCEL : IDOK;
}

UINT InstallAndCancel(const char* package, const char* properties)
{
    MsiSetExternalUIA(&CancelDuringStep, INSTALLLOGMODE_ACTIONDATA | INSTALLLOGMODE_PROGRESS, nullptr);
    return MsiInstallProductA(package, properties);
}

UINT RunAsStandardUser(std::string commandLine)
{
    const UniqueHandle token = StandardUserToken();
    STARTUPINFOA startup{};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION started{};
    if (!token || CreateProcessAsUserA(token.get(), nullptr, commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr,
                                       nullptr, &startup, &started) == FALSE) {
        return GetLastError();
    }
    const UniqueHandle process(started.hProcess);
    const UniqueHandle thread(started.hThread);
    WaitForSingleObject(process.get(), INFINITE);
    DWORD exitCode = kUsage;
    GetExitCodeProcess(process.get(), &exitCode);
    return exitCode;
}

UINT Call(const std::vector<std::string>& arguments)
{
    const std::string what = arguments.size() > 2 ? arguments[1] : "";
    if (what == "as-user") {
        return RunAsStandardUser(arguments[2]);
    }
    MsiSetInternalUI(INSTALLUILEVEL_NONE, nullptr);
    if (!what.empty()) {
        MsiEnableLogA(INSTALLLOGMODE_VERBOSE | INSTALLLOGMODE_INFO | INSTALLLOGMODE_ERROR | INSTALLLOGMODE_ACTIONDATA,
                      arguments[0].c_str(), 0);
    }
    if (what == "repair") {
        return MsiReinstallProductA(arguments[2].c_str(), kRepair);
    }
    if (what == "heal") {
        return MsiReinstallFeatureA(arguments[2].c_str(), "Morvix", kSelfRepair);
    }
    if (what == "cancel" && arguments.size() > 3) {
        return InstallAndCancel(arguments[2].c_str(), arguments[3].c_str());
    }
    return kUsage;
}
} // namespace

int main(int argc, char** argv)
{
    return static_cast<int>(Call({argv + 1, argv + argc}));
}
