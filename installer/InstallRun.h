#pragma once

#include <windows.h>

#include "DriverInstallRecord.h"

/// One whole installation: COM, the restore point, the device pass between two scans for hardware changes, and how the
/// dialog is to finish. Runs on the install thread.
/// @param record  The run's record with the family name in it.
/// @param dialog  The progress dialog, or null.
/// @return 0; -1 when the device pass could not run. The restore point is then still open and COM still initialised.
int InstallDrivers(DriverInstallRecord& record, HWND dialog);
