#pragma once

/// @return 1 when the caller's token (the thread's, else the process's) lists the built-in Administrators group, or
///         when the system has no security at all; else 0.
int RunningAsAdministrator();
