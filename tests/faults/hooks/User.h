#pragma once

#include <windows.h>

/// The user, and the system's reaction to a restart request. With a plan that is interactive the user presses OK and
/// later the finish button; a dialog that nothing will ever close is closed so that the run ends, and that is reported.

void TellDialog(HWND dialog);
/// @param thread  The install thread, or null when none was made.
void TellInstallThread(HANDLE thread);
/// Waits until the install thread has ended: what it and the main thread do at the same time would be chance.
void AwaitInstallThread();
/// The dialog has a timer of that number.
void TellTimer(UINT_PTR timer);
void CloseDialog();
/// Called for each message that the program takes from its queue; may change it.
void ActForUser(MSG& message);
