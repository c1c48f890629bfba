#pragma once

#include <string>
#include <vector>

#include "DriverInstallRecord.h"
#include "OSCode.h"

/// Search for the INF file that lists a device, among those that the setup INI names for a system.

/// Reads the setup INI's lists for the running system.
/// @param directories  Appended to: directories to search, absolute, each with a backslash at its end.
/// @param excludes     Appended to: file names of INF files to leave out, as written.
void GetInfDirs(std::vector<std::string>& directories, std::vector<std::string>& excludes);

/// The same for a system of code `system`.
void GetInfDirsFor(OSCode system, std::vector<std::string>& directories, std::vector<std::string>& excludes);

/// Searches one directory for an INF file that lists a device. Each INF that qualifies on the way is handed once per
/// run to the platform's INF store. The first INF that lists the device ends the search and leaves its traces in
/// matchedHardwareId and deviceDescription.
/// @param key        Hardware ID without the bus prefix.
/// @param directory  Directory to search.
/// @param record     Only its family name is read.
/// @param infPath    Buffer of at least 260 chars; receives the INF's full path, untouched when nothing matches.
/// @param excludes   File names of INF files to leave out, unless RunOptions.forceInfScan is set.
/// @return true when an INF was found.
bool GetInfFile(const char* key, const std::string& directory, const DriverInstallRecord& record, char* infPath,
                const std::vector<std::string>& excludes);
