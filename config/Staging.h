#pragma once

#include <string>

#include "OSCode.h"

/// Staging for the 9x family: its systems look for driver files in their own source ("cab") directory, so every file of
/// every configured INF directory is copied there.

/// Copies the files of all INF directories of the running system into the cab directory that the registry names, or,
/// when nothing could be copied, into a directory of its own below the Windows directory; on Windows 98 the legacy
/// install helper is then run. No failure stops the run.
void CopyFilesToCabDir();

/// The same for the system `system`.
void CopyFilesToCabDirFor(OSCode system);

/// Copies every file of a directory; a read-only target of an earlier copy is overwritten.
/// @param sourceDirectory       Ends with a backslash.
/// @param destinationDirectory  Ends with a backslash. An empty one names no place: nothing is copied then, and each
///                              file is traced as failed.
/// @return 1 when at least one file was copied, else 0.
int CopyAllFiles(const std::string& sourceDirectory, const std::string& destinationDirectory);

/// Runs the legacy install helper without a device, from the program's own directory, which becomes the current one.
/// @param cabDirectory  Ends with a backslash.
/// @return the result of LaunchAppandWait.
int Win98InfNotAvail(const std::string& cabDirectory);
