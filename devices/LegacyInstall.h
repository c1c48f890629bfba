#pragma once

#include <string>

/// The Windows 98 route: runs the legacy install helper once for each instance of the device and waits for it. Before
/// each run, "RegPCIpath" under SOFTWARE\Norda\MSI names the instance; the last one stays there. An instance for which
/// that key cannot be opened or created is skipped; a failed write of the value is ignored. The process's current
/// directory is the program's directory afterwards.
/// @param hardwareId  "PCI\" and the device's key name.
/// @return always 0.
int Win98Install(const std::string& infPath, const std::string& hardwareId);
