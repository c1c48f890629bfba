#pragma once

/// Tests whether this run must stop: another instance runs, or, on Windows NT 4 only, the management software does (a
/// box says so even in a silent run).
/// @param mutexName  Name of the single-instance mutex, which is then held for the life of the process.
/// @return 1 when the run must stop, else 0.
int PreviousInstanceRunning(const char* mutexName);

/// @return 1 when the management software's mutex exists, else 0.
int IsTaviskActive();
