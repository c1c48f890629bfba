#pragma once

#include <windows.h>

/// Asks the progress dialog to end the run. The request goes through the dialog's message queue; when that takes no
/// more, it is handed over directly, because a run in which nobody sits at the machine has no other end.
void AskToClose(HWND dialog);
