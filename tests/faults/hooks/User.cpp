#include "User.h"

#include "Journal.h"

namespace {
constexpr int kFinishButton = 1002, kRestartLaterButton = 1007;
// Posted after everything that the install thread has posted.
constexpr UINT kInstallOver = WM_APP + 0x77;
constexpr DWORD kLimit = 30000;

HWND dialogWindow = nullptr;
HANDLE installEnded = nullptr;
bool countdownRuns = false;

bool IsOffered(int control)
{
    HWND window = GetDlgItem(dialogWindow, control);
    return window != nullptr && (GetWindowLongA(window, GWL_STYLE) & (WS_VISIBLE | WS_DISABLED)) == WS_VISIBLE;
}

DWORD WINAPI WaitForInstall(void* /*unused*/)
{
    WaitForSingleObject(installEnded, kLimit);
    // The thread may have ended before the dialog was handed out.
    for (DWORD waited = 0; dialogWindow == nullptr && waited < kLimit; ++waited) {
        Sleep(1);
    }
    PostMessageA(dialogWindow, kInstallOver, 0, 0);
    return 0;
}

void Press(MSG& message, int control)
{
    message.hwnd = dialogWindow;
    message.message = WM_COMMAND;
    message.wParam = static_cast<WPARAM>(control);
    message.lParam = reinterpret_cast<LPARAM>(GetDlgItem(dialogWindow, control));
}
} // namespace

void TellDialog(HWND dialog)
{
    dialogWindow = dialog;
    if (Channel()->plan.interactive != 0) {
        PostMessageA(dialog, WM_COMMAND, IDOK, reinterpret_cast<LPARAM>(GetDlgItem(dialog, IDOK)));
    }
}

void TellInstallThread(HANDLE thread)
{
    if (thread != nullptr) {
        DuplicateHandle(GetCurrentProcess(), thread, GetCurrentProcess(), &installEnded, SYNCHRONIZE, FALSE, 0);
    } else {
        installEnded = CreateEventA(nullptr, TRUE, TRUE, nullptr);
    }
    CloseHandle(CreateThread(nullptr, 0, WaitForInstall, nullptr, 0, nullptr));
}

void AwaitInstallThread()
{
    if (installEnded != nullptr) {
        WaitForSingleObject(installEnded, kLimit);
    }
}

void TellTimer(UINT_PTR timer)
{
    countdownRuns = countdownRuns || timer == 0;
}

void CloseDialog()
{
    PostMessageA(dialogWindow, WM_CLOSE, 0, 0);
}

void ActForUser(MSG& message)
{
    if (message.message == WM_CLOSE) {
        AwaitInstallThread();
    }
    if (message.message != kInstallOver) {
        return;
    }
    if (IsOffered(kFinishButton)) {
        Press(message, kFinishButton);
    } else if (IsOffered(kRestartLaterButton) && countdownRuns) {
        message.message = WM_NULL;
    } else if (IsOffered(kRestartLaterButton)) {
        Press(message, kRestartLaterButton);
    } else {
        WriteLine('E', "the dialog stays until something closes it");
        message.hwnd = dialogWindow;
        message.message = WM_CLOSE;
    }
}
