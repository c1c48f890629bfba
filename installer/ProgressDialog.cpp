#include "ProgressDialog.h"

#include <array>
#include <string>
#include <utility>

#include "ActivityBar.h"
#include "CloseRequest.h"
#include "DialogControls.h"
#include "EndOfRun.h"
#include "Handles.h"
#include "InsertRules.h"
#include "InstallRun.h"
#include "LangString.h"
#include "PendingUninstall.h"
#include "Restart.h"
#include "RestartMessage.h"
#include "RestartQuestion.h"
#include "ResultKeys.h"
#include "RunOptions.h"
#include "RunState.h"
#include "SentMessages.h"
#include "ThreadLanguage.h"
#include "Trace.h"
#include "UnhandledFault.h"

InstallThreadParameters installThreadParameters;

namespace {
// How long a restart waits for the install thread, which may be about to end its restore point. A service that does not
// answer must not keep the machine from restarting.
constexpr DWORD kRestartWaitMilliseconds = 30'000;

int countdown = kCountdownStart;
bool closing = false;
bool restarting = false;
UniqueHandle installThread;

struct DialogButtons
{
    HWND restartNow;
    HWND restartLater;
    HWND cancel;
    HWND ok;
    HWND finish;
};

DialogButtons FindButtons(HWND dialog)
{
    return {GetDlgItem(dialog, kRestartNowButton), GetDlgItem(dialog, kRestartLaterButton),
            GetDlgItem(dialog, IDCANCEL), GetDlgItem(dialog, IDOK), GetDlgItem(dialog, kFinishButton)};
}

void HideAndDisable(HWND control)
{
    ShowWindow(control, SW_HIDE);
    EnableWindow(control, FALSE);
}

void EnableAndShow(HWND control)
{
    EnableWindow(control, TRUE);
    ShowWindow(control, SW_SHOW);
}

void Focus(HWND dialog, HWND control)
{
    PostMessageA(dialog, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(control), 1);
}

void SetStatus(HWND dialog, const std::string& text)
{
    SetDlgItemTextA(dialog, kStatusText, text.c_str());
}

void StartInstallThread(HWND dialog)
{
    ShowActivity(dialog);
    DWORD threadId = 0;
    installThread.reset(CreateThread(nullptr, 0, InstallThread, &installThreadParameters, 0, &threadId));
}

void InitializeDialog(HWND dialog, const DialogButtons& buttons)
{
    installThreadParameters.dialog = dialog;
    if (RunOptions.msiMode != 0 || RunOptions.silent != 0) {
        SetStatus(dialog, LangString(kStringWorking));
        StartInstallThread(dialog);
        return;
    }
    const std::string family = FamilyOf(*installThreadParameters.record);
    if (EqualsIgnoringCase(family, kFamilyWindowsNT) || EqualsIgnoringCase(family, kFamilyWindows98)) {
        SetStatus(dialog, LangString(kStringWelcome) + LangString(kStringAdvice));
        return;
    }
    SetStatus(dialog, LangString(kStringWelcome));
    SetWindowTextA(buttons.cancel, LangString(kStringCancel).c_str());
    SetWindowTextA(dialog, LangString(kStringCaption).c_str());
}

/// @return false when the install thread still runs after that time.
bool InstallThreadEndsWithin(DWORD milliseconds)
{
    return !installThread || WaitAnsweringSentMessages(installThread.get(), milliseconds);
}

/// Asks the system to restart once the install thread has ended its restore point.
void RestartOnceInstalled()
{
    // A message that is answered during the wait may ask for the restart as well.
    if (!std::exchange(restarting, true)) {
        const bool wasClosing = closing;
        InstallThreadEndsWithin(kRestartWaitMilliseconds);
        // Whoever has closed the dialog meanwhile has been asked, and has answered.
        if (closing == wasClosing) {
            RestartMachine();
        }
        restarting = false;
    }
}

INT_PTR OnCommand(HWND dialog, const DialogButtons& buttons, WPARAM wParam, LPARAM lParam)
{
    const HWND control = reinterpret_cast<HWND>(lParam);
    if (HIWORD(wParam) != 0 || control == nullptr) {
        return 0;
    }
    if ((control == buttons.ok || control == buttons.cancel) && IsWindowEnabled(control) == FALSE) {
        // The Return and Escape keys still name these buttons while the drivers are being installed.
        return 0;
    }
    if (control == buttons.ok) {
        HideAndDisable(buttons.cancel);
        HideAndDisable(buttons.ok);
        StartInstallThread(dialog);
        return 1;
    }
    if (control == buttons.finish || control == buttons.restartLater || control == buttons.cancel) {
        AskToClose(dialog);
        return 1;
    }
    if (control == buttons.restartNow) {
        RestartOnceInstalled();
        return 1;
    }
    return 0;
}

INT_PTR OnRestartOffered(HWND dialog, const DialogButtons& buttons)
{
    if (closing) {
        // The end-of-run decision is being made: a countdown must not overtake the answer to its question.
        return 1;
    }
    EnableAndShow(buttons.restartNow);
    EnableAndShow(buttons.restartLater);
    Focus(dialog, buttons.restartNow);
    SetTimer(dialog, kCountdownTimer, kCountdownPeriodMilliseconds, nullptr);
    countdown = kCountdownStart;
    return 1;
}

std::string CountdownText()
{
    const std::string format = LangString(kStringRestartCountdown);
    DWORD flags = FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_STRING | FORMAT_MESSAGE_ARGUMENT_ARRAY;
    if (!InsertsAreNumbers(format)) {
        // The seconds are not the address of a text. A countdown that asks for one is shown as it stands.
        flags |= FORMAT_MESSAGE_IGNORE_INSERTS;
    }
    // 99 is the highest insert that FormatMessage knows: a text that asks for more than the seconds reads zeros of
    // ours.
    std::array<DWORD_PTR, 99> arguments{static_cast<DWORD_PTR>(countdown)};
    char* text = nullptr;
    FormatMessageA(flags, format.c_str(), 0, 0, reinterpret_cast<char*>(&text), kMessageBytes,
                   reinterpret_cast<va_list*>(arguments.data()));
    const UniqueLocalText owner(text);
    return text == nullptr ? std::string() : std::string(text);
}

// Shows 20, 19, ... 0 and restarts on the 21st tick.
INT_PTR OnCountdownTick(HWND dialog)
{
    SetStatus(dialog, CountdownText());
    if (countdown <= 0) {
        KillTimer(dialog, kCountdownTimer);
        RestartOnceInstalled();
    }
    --countdown;
    return 1;
}

INT_PTR EndMessageLoop()
{
    PostQuitMessage(0);
    return 1;
}

INT_PTR OnTimer(HWND dialog, WPARAM timer)
{
    if (timer == kCountdownTimer) {
        return OnCountdownTick(dialog);
    }
    if (timer == kCloseTimer) {
        AskToClose(dialog);
    }
    return EndMessageLoop();
}

/// @return true when the machine is to be restarted now.
bool DecideAndRecordRestart()
{
    const bool needed = OutcomeDecidesRestart(RunOptions) && RestartIsNeeded();
    if (needed) {
        isRegEntryTAVUnstl();
    }
    switch (DecideRestart(RunOptions, needed)) {
        case RestartAction::Restart:
            return true;
        case RestartAction::Ask:
            return AskRestartQuestion() == IDYES;
        case RestartAction::RecordForInstaller:
            SetRebootNeeded();
            return false;
        case RestartAction::None:
            return false;
    }
    return false;
}

INT_PTR OnClose(HWND dialog)
{
    // While the restart question is open the dialog can still be told to close: one end is enough. Told that this was
    // not handled, the system would press Cancel, which asks to close again, without an end.
    if (std::exchange(closing, true)) {
        return 1;
    }
    KillTimer(dialog, kCloseTimer);
    // Whoever chose to restart later is not restarted by a countdown while the question waits for its answer.
    KillTimer(dialog, kCountdownTimer);
    const bool restart = DecideAndRecordRestart();
    // The install thread asks for the end before it has ended itself, and others can close the dialog under it: while
    // it runs it may read texts, and its restore point may still be open.
    if (InstallThreadEndsWithin(restart ? kRestartWaitMilliseconds : 0)) {
        FreeLibrary(resourceModule);
        resourceModule = nullptr;
    }
    if (restart) {
        RestartMachine();
    }
    if (DestroyWindow(dialog) == FALSE) {
        // A dialog that stays must not keep the program.
        return EndMessageLoop();
    }
    return 0;
}
} // namespace

HWND CreateProgressDialog(HWND owner)
{
    // The texts are loaded in the language of the run; the template is picked by the thread's.
    const ThreadLanguage language(runLanguageId);
    return CreateDialogParamA(resourceModule, MAKEINTRESOURCEA(kProgressDialog), owner, ProgressDialogProc, 0);
}

void WaitForInstallThread()
{
    InstallThreadEndsWithin(INFINITE);
}

namespace {
INT_PTR HandleMessage(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam)
{
    const DialogButtons buttons = FindButtons(dialog);
    if (RunOptions.msiMode != 0) {
        HideAndDisable(buttons.cancel);
        HideAndDisable(buttons.ok);
    }
    // 0 when the system could not register it.
    if (message == restartMessage && restartMessage != 0) {
        return OnRestartOffered(dialog, buttons);
    }
    switch (message) {
        case WM_INITDIALOG:
            InitializeDialog(dialog, buttons);
            return 0;
        case WM_COMMAND:
            return OnCommand(dialog, buttons, wParam, lParam);
        case WM_TIMER:
            return OnTimer(dialog, wParam);
        case WM_DESTROY:
            return EndMessageLoop();
        case WM_CLOSE:
            return OnClose(dialog);
        default:
            return 0;
    }
}

void RunInstallThread(InstallThreadParameters& thread)
{
    Trace("Entering - InstallThread");
    thread.result = InstallDrivers(*thread.record, thread.dialog);
    const bool failedInteractively =
        thread.result == -1 && RunState.fcoeRestart == 0 && RunOptions.silent == 0 && RunOptions.msiMode == 0;
    if (failedInteractively) {
        SetStatus(thread.dialog, LangString(kStringInstallFailed));
        const HWND finish = GetDlgItem(thread.dialog, kFinishButton);
        EnableAndShow(finish);
        Focus(thread.dialog, finish);
    }
    HideActivity(thread.dialog);
}
} // namespace

// No exception leaves the two functions that the platform calls: what it would make of one differs from system to
// system, and here everything on the way is given back.

INT_PTR CALLBACK ProgressDialogProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam)
{
    try {
        return HandleMessage(dialog, message, wParam, lParam);
    } catch (...) {
        EndOnUnhandledFault();
    }
}

DWORD WINAPI InstallThread(void* parameters)
{
    KeepStackForFaults();
    try {
        RunInstallThread(*static_cast<InstallThreadParameters*>(parameters));
    } catch (...) {
        EndOnUnhandledFault();
    }
    return 0;
}
