#pragma once

/// Traces the system's text for the calling thread's last error. The last error is read first, so the trace cannot
/// change it.
void PrintGetLastErrorMessage();
