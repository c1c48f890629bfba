#pragma once

#include <windows.h>

/// The bar that moves in the progress dialog while the install thread works. A dialog without it works too.

/// Registers the bar's window class. Called before the dialog is created.
void RegisterActivityBar();

/// Shows the bar and sets it in motion. Called on the dialog's thread.
void ShowActivity(HWND dialog);

/// Hides the bar. Called on any thread: it never waits for the dialog's thread, which may be waiting for the caller.
void HideActivity(HWND dialog);
