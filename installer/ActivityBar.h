#pragma once

#include <windows.h>

/// The bar that moves in the progress dialog while the install thread works. A dialog without it works too.

/// Loads the library of the common controls in the version that the manifest selects, and registers the bar's window
/// class. Called before the first window: the buttons of message boxes come from that library as well.
void RegisterActivityBar();

/// Shows the bar and sets it in motion. Called on the dialog's thread.
void ShowActivity(HWND dialog);

/// Hides the bar. Can be called on any thread: it never waits for the dialog's thread, which may be waiting for the
/// caller.
void HideActivity(HWND dialog);
