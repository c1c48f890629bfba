#pragma once

#include <windows.h>

#include "DriverInstallRecord.h"

/// What the install thread works on. One for the process.
struct InstallThreadParameters
{
    DriverInstallRecord* record = nullptr; ///< set by start-up before the dialog exists
    HWND dialog = nullptr;                 ///< set by the dialog when it is initialised
    int result = 0;                        ///< set by the thread: what InstallDrivers returned
};
extern InstallThreadParameters installThreadParameters;

/// Dialog procedure of the progress dialog: starts the install thread, shows what it reports, decides about the restart
/// and ends the message loop. Nonzero for handled messages.
INT_PTR CALLBACK ProgressDialogProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);

/// Creates the progress dialog, hidden, with template and texts in the language of the run. Needs the window class, the
/// resource library and the record of installThreadParameters.
/// @param owner  Its owner window, or null.
/// @return null when it cannot be created.
[[nodiscard]] HWND CreateProgressDialog(HWND owner);

/// Waits until the install thread has ended, if one was started. It ends the dialog before it closes the restore point:
/// a process that ended with the dialog could leave the point open.
void WaitForInstallThread();

/// The install thread. @param parameters  the InstallThreadParameters. @return 0.
DWORD WINAPI InstallThread(void* parameters);
