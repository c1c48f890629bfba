#pragma once

/// Starts a scan of the whole device tree for hardware changes.
/// @return 1 when the scan was started, 0 otherwise.
int ScanForHardwareChanges();
