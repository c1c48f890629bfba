#include <windows.h>

#include <cstdint>
#include <memory>
#include <string>
#include <utility>

#include "ActivityBar.h"
#include "CommandLine.h"
#include "DriverInstallRecord.h"
#include "ErrorMode.h"
#include "LangString.h"
#include "LanguageTable.h"
#include "LocationInfo.h"
#include "OSLanguage.h"
#include "ProgressDialog.h"
#include "RestorePoint.h"
#include "ResultKeys.h"
#include "RunOptions.h"
#include "RunState.h"
#include "SetupLocation.h"
#include "SingleInstance.h"
#include "SystemLibrary.h"
#include "SystemProbe.h"
#include "Trace.h"
#include "UnhandledFault.h"

namespace {
constexpr int kExitFailure = -1;
constexpr char kWindowClass[] = "Morvix";

bool LoadResourceLibrary()
{
    const std::string path = LocationInfo.setupDir + R"(\MorvixRes.dll)";
    resourceModule = LoadLibraryA(path.c_str());
    if (resourceModule == nullptr) {
        Trace("unable to load: ", path, "\n");
        return false;
    }
    return true;
}

void FreeResourceLibrary()
{
    FreeLibrary(resourceModule);
    resourceModule = nullptr;
}

bool RegisterDialogClass()
{
    WNDCLASSA windowClass{};
    windowClass.style = CS_VREDRAW | CS_HREDRAW | CS_NOCLOSE;
    windowClass.lpfnWndProc = DefDlgProcA;
    windowClass.cbWndExtra = DLGWINDOWEXTRA;
    windowClass.hInstance = resourceModule;
    windowClass.hCursor = LoadCursorA(nullptr, IDC_ARROW);
    windowClass.hbrBackground = reinterpret_cast<HBRUSH>(static_cast<INT_PTR>(COLOR_BTNFACE + 1));
    windowClass.lpszClassName = kWindowClass;
    return RegisterClassA(&windowClass) != 0;
}

int RunDialog(DriverInstallRecord& record)
{
    if (!RegisterDialogClass()) {
        MessageBoxA(nullptr, "This program requires Windows NT.", "Morvix", MB_ICONERROR);
        FreeResourceLibrary();
        return 0;
    }
    installThreadParameters.record = &record;
    // Under a Windows Installer user interface the dialog belongs to the installer's window.
    const HWND owner = FindWindowA("MsiDialogCloseClass", nullptr);
    const HWND dialog = CreateProgressDialog(owner);
    if (dialog == nullptr) {
        // A resource library without the dialog: nothing would ever end the message loop.
        Trace("unable to create the dialog\n");
        FreeResourceLibrary();
        return kExitFailure;
    }
    ShowWindow(dialog, RunOptions.silent ? SW_HIDE : SW_SHOWNORMAL);

    MSG message{};
    for (BOOL taken = TRUE; taken != 0;) {
        taken = GetMessageA(&message, nullptr, 0, 0);
        // -1 is a failure: no message was received, but the next call may succeed.
        if (taken > 0 && IsDialogMessageA(dialog, &message) == FALSE) {
            TranslateMessage(&message);
            DispatchMessageA(&message);
        }
    }
    WaitForInstallThread();
    if (resourceModule != nullptr) {
        // The dialog ended while the install thread was still reading texts.
        FreeResourceLibrary();
    }
    return static_cast<int>(message.wParam);
}

int RunProgram(int argc, const char* const* argv)
{
    Trace("Entering -WinMain ");
    RunState = {};
    setRestorePoint = nullptr;
    DeleteRebootNeeded();
    if (SetLocationInfo(argc > 0 ? argv[0] : "") == 0) {
        Trace("error: SetLocationInfo() failed, exiting program\n");
        return kExitFailure;
    }
    runLanguageId = RunLanguageIdFor(GetOSLanguageID(nullptr, 0));
    if (!LoadResourceLibrary()) {
        return kExitFailure;
    }

    OptionMap optionMap;
    ParseCommandLine(optionMap, argc, argv);
    CommandLineDecision decision = DecideOptions(optionMap);
    for (std::string& line : decision.traceLines) {
        Trace(std::move(line));
    }
    if (decision.help) {
        FreeResourceLibrary();
        return 0;
    }
    RunOptions = decision.options;

    if (PreviousInstanceRunning("Morvix") != 0) {
        Trace("detected previous instance of application or Tavisk is active; unable to continue\n");
        FreeResourceLibrary();
        return kExitFailure;
    }
    const auto record = std::make_unique<DriverInstallRecord>();
    if (const uint32_t status = ProbeSystem(*record); status != 0) {
        ReportProbeFailure(status, *record, RunOptions.silent);
        FreeResourceLibrary();
        return kExitFailure;
    }
    return RunDialog(*record);
}
} // namespace

int WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR, int)
{
    // First, because the program runs with administrator rights.
    TakeCurrentDirectoryOutOfLibrarySearch();
    ReportCriticalErrorsToTheProgram();
    EndOnEveryFault();
    RegisterActivityBar();
    // Caught so that destructors run.
    try {
        return RunProgram(__argc, __argv);
    } catch (...) {
        EndOnUnhandledFault();
    }
}
