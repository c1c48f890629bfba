#pragma once

#include <windows.h>

/// Asks the progress dialog to end the run. The request goes through the dialog's message queue; when that is full, the
/// dialog is called directly, because an unattended run has no other end.
void AskToClose(HWND dialog);
