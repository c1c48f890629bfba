#pragma once

#include <string>

#include "DriverInstallRecord.h"

/// Starts a program and waits, without a time limit, until it ends. Its exit code is not read.
/// @param commandLine  Program and arguments; taken by value because the platform may write into it.
/// @return 0 when the program was started and has ended, -1 when it could not be started.
int LaunchAppandWait(std::string commandLine);

/// The same for an uninstaller, with a shorter trace.
int UninstallAppandWait(std::string commandLine);

/// Looks for the uninstaller in the system directory and runs it without its user interface.
/// @return 1 when one was found (regardless of its result), 0 otherwise.
int DoUninstall(const DriverInstallRecord& record);
