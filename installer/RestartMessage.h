#pragma once

#include <windows.h>

/// The registered window message that makes the progress dialog offer the restart. Registered before WinMain runs, so
/// the dialog and the install thread never see different numbers.
inline const UINT restartMessage = RegisterWindowMessageA("Norda Morvix Restart Now");
