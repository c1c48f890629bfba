#pragma once

/// Asks the system to restart (EWX_REBOOT) after enabling the shutdown privilege. A privilege that cannot be enabled is
/// not an error: the result of ExitWindowsEx decides.
/// @return the result of ExitWindowsEx, nonzero when the restart has begun.
int RestartMachine();
