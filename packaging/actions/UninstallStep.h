#pragma once

#include "InstallerSession.h"

/// Runs the maker's uninstaller when the system directory has one and waits until it has ended, without a time limit,
/// as the program's own uninstall does. Then takes away the uninstall data that the program has laid down there, and
/// its registration: the file came with the kit.
void UninstallDrivers(const InstallerSession& session);
