#pragma once

/// Traces the system's text for the calling thread's last error. The last error itself is read first, so nothing that
/// the trace does can change what is reported.
void PrintGetLastErrorMessage();
