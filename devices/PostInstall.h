#pragma once

#include <span>

#include "OSCode.h"

/// Reports the outcome of an install in the registry: classifies the INF by its file name, looks for the family's
/// driver file in the system's driver directory and posts "SUCCESS" with the file's version, or "FAILURE". An
/// unreported refusal (DevicePassState) makes it "FAILURE" whatever is there, and is cleared.
/// @param infPath  Full path of the installed INF, NUL-terminated within the buffer; in upper case afterwards.
/// @return 1 when the INF belonged to a driver family and a result was written, 0 otherwise.
int PostInstallRegResult(std::span<char> infPath);
/// The same for a system of code `system`: the 6.1 systems have driver files of their own in some families.
int PostInstallRegResultFor(OSCode system, std::span<char> infPath);

/// Copies the uninstall data file "Morvix.din" from the program's directory to the system directory and registers it
/// for the uninstaller. Does nothing when there is none to copy.
void UpdateTavunstRegistry();
