#include "InstallRun.h"

#include <objbase.h>

#include <array>
#include <cstdint>
#include <cstdio>

#include "CloseRequest.h"
#include "DevicePass.h"
#include "DevicePassState.h"
#include "DialogControls.h"
#include "EndOfRun.h"
#include "EntryPoints.h"
#include "FcoeCheck.h"
#include "Handles.h"
#include "HardwareScan.h"
#include "LangString.h"
#include "NetInstLibrary.h"
#include "PciEnumeration.h"
#include "PostInstall.h"
#include "RestartMessage.h"
#include "RestorePoint.h"
#include "RunFlow.h"
#include "RunOptions.h"
#include "RunState.h"
#include "SetupQuestions.h"
#include "Staging.h"
#include "Trace.h"
#include "WindowStation.h"

namespace {
bool InitializeCom()
{
    Trace("CoInitialize");
    if (FAILED(CoInitializeEx(nullptr, COINIT_MULTITHREADED))) {
        Trace("Unexpected error: CoInitializeEx() failed");
        return false;
    }
    if (FAILED(CoInitializeSecurity(nullptr, -1, nullptr, nullptr, RPC_C_AUTHN_LEVEL_CONNECT,
                                    RPC_C_IMP_LEVEL_IMPERSONATE, nullptr, EOAC_NONE, nullptr))) {
        Trace("CoInitializeSecurity() failed");
    }
    return true;
}

UniqueLibrary LoadRestorePointLibrary()
{
    UniqueLibrary library(LoadLibraryW(L"srclient.dll"));
    if (!library) {
        Trace("LoadLibrary failed!");
        return nullptr;
    }
    setRestorePoint = FindEntry<SetRestorePointFn>(library.get(), "SRSetRestorePointW");
    if (setRestorePoint == nullptr) {
        Trace("Failed to find SRSetRestorePointW.");
    }
    return library;
}

void TraceMissingInterface(uint32_t status)
{
    std::array<char, 64> line{};
    static_cast<void>(std::snprintf(line.data(), line.size(), "no driver-install interface: status %x\n",
                                    static_cast<unsigned>(status)));
    Trace(line.data());
}

bool DevicePassBetweenScans(DriverInstallRecord& record, IDriverInstallInterface* driverInstall, HWND dialog)
{
    ScanForHardwareChanges();
    if (EnumerateRegistryForPCIDevices(record, driverInstall, dialog) == kDevicePassFailed) {
        return false;
    }
    if (driverInstall == nullptr) {
        // Matched, but not installed: no restart for it.
        DevicePassState.qdatInstalled = false;
    }
    ScanForHardwareChanges();
    return true;
}

void OfferFinish(HWND dialog, int show)
{
    if (dialog == nullptr) {
        return;
    }
    const HWND finish = GetDlgItem(dialog, kFinishButton);
    if (finish == nullptr) {
        // Without the button nobody could ever end the run.
        AskToClose(dialog);
        return;
    }
    EnableWindow(finish, TRUE);
    ShowWindow(finish, show);
    PostMessageA(dialog, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(finish), 1);
}

/// A message shows the restart buttons; where it cannot be registered or sent, the finish button leads to the same
/// question.
void OfferRestart(HWND dialog)
{
    if (dialog != nullptr && (restartMessage == 0 || PostMessageA(dialog, restartMessage, 0, 0) == FALSE)) {
        OfferFinish(dialog, SW_SHOWNORMAL);
    }
}

/// @return false when the device pass could not run.
bool RunWindowsNT(DriverInstallRecord& record, HWND dialog)
{
    if (!FcoeBootAllowsRun()) {
        AskToClose(dialog);
        return true;
    }
    // Without an interface the walk still runs, and every matched device counts as refused.
    uint32_t status = 0;
    const auto driverInstall = CreateDriverInstall(&record, status);
    if (!driverInstall) {
        TraceMissingInterface(status);
    }

    if (IsUnattended(RunOptions)) {
        if (!DevicePassBetweenScans(record, driverInstall.get(), dialog)) {
            return false;
        }
        AskToClose(dialog);
        return true;
    }
    if (dialog != nullptr) {
        if (!DevicePassBetweenScans(record, driverInstall.get(), dialog)) {
            return false;
        }
        const unsigned outcome = OutcomeString(DevicePassState.deviceMatched, DevicePassState.installFailed);
        SetDlgItemTextA(dialog, kStatusText, LangString(outcome).c_str());
    }
    if (RunState.fcoeRestart) {
        OfferRestart(dialog);
        return true;
    }
    if (RunOptions.oemGui && dialog != nullptr) {
        SetTimer(dialog, kCloseTimer, kClosePeriodMilliseconds, nullptr);
    }
    OfferFinish(dialog, SW_SHOWNORMAL);
    return true;
}

/// On these systems the files are staged after the device pass, where the platform looks for them at the next start.
/// @return false when the device pass could not run.
bool RunWindows9x(RunFlow flow, DriverInstallRecord& record, HWND dialog)
{
    (flow == RunFlow::WindowsMe ? RunState.windowsMeRun : RunState.windows98Run) = true;
    const bool silent = RunOptions.silent;
    if (!silent && dialog == nullptr) {
        return true;
    }
    if (EnumerateRegistryForPCIDevices(record, nullptr, dialog) == kDevicePassFailed) {
        return false;
    }
    CopyFilesToCabDir();
    PostInstallRegResult(record.infPath);
    if (silent) {
        AskToClose(dialog);
    } else if (flow == RunFlow::WindowsMe && !DevicePassState.deviceMatched) {
        SetDlgItemTextA(dialog, kStatusText, LangString(kStringNoAdapter).c_str());
        OfferFinish(dialog, SW_SHOW);
    } else {
        OfferRestart(dialog);
    }
    return true;
}

bool RunFlowFor(DriverInstallRecord& record, HWND dialog)
{
    const RunFlow flow = FlowForFamily(FamilyOf(record));
    switch (flow) {
        case RunFlow::WindowsNT:
            return RunWindowsNT(record, dialog);
        case RunFlow::WindowsMe:
        case RunFlow::Windows98:
            return RunWindows9x(flow, record, dialog);
        case RunFlow::Unknown:
            break;
    }
    Trace("unable to determine OS\n");
    return true;
}
} // namespace

int InstallDrivers(DriverInstallRecord& record, HWND dialog)
{
    Trace("Enter -> InstallDrivers()\n");
    if (RunOptions.silent || !WindowsAreSeen()) {
        RefuseSetupQuestions();
    }
    const bool comInitialized = InitializeCom();
    UniqueLibrary restoreLibrary = comInitialized ? LoadRestorePointLibrary() : nullptr;
    RESTOREPOINTINFOW restorePoint{};
    int64_t sequence = 0;
    const bool restorePointBegun = BeginRestorePoint(restorePoint, sequence) != 0;

    if (!RunFlowFor(record, dialog)) {
        // The restore point stays open and COM stays initialised, and so the library stays loaded.
        static_cast<void>(restoreLibrary.release());
        return -1;
    }
    if (restorePointBegun) {
        EndRestorePoint(restorePoint, sequence);
    }
    Trace("Exit -> InstallDrivers()\n");
    setRestorePoint = nullptr;
    restoreLibrary.reset();
    if (comInitialized) {
        CoUninitialize();
    }
    return 0;
}
