#pragma once

#include <string>
#include <vector>

#include "OSCode.h"

/// The setup INI file "Morvix.ini" in the program's directory: which directories hold the INF files of a system, which
/// INF files to leave out, and which model sections count. Nothing here fails: what is missing reads as empty.

/// @return the full path of the setup INI.
[[nodiscard]] std::string SetupIniPath();

/// @return the number of levels by which the base of relative directories is above the program's directory, as it
///         is written in the file: "LevelsToRoot" of section "Config", 0 when missing or not a number.
[[nodiscard]] int GetLevelsToRootFromINI();

/// Appends the directories of the "InfDir" lines, resolved to absolute paths with a backslash at the end, in file
/// order. The section is read into 260 bytes and, if it was cut, once more into 520; the rest is lost.
/// @param section  The system's section key.
void ReadInfDirsFromIni(const std::string& section, std::vector<std::string>& dirs);

/// Appends the file names of the "InfExclude" lines as they are written, in file order. At most 1022 characters of the
/// section are read.
/// @param section  The system's section key.
void ReadInfExcludeFilesFromINI(const std::string& section, std::vector<std::string>& excludes);

/// Appends the names of the model sections that count on the running system: those of "InfSectionName", the last name
/// of the value first. Blanks around the commas belong to the names. A missing value, or a system that is not served,
/// gives one empty name.
void GetINFSectionNamesFromINI(std::vector<std::string>& names);

/// The same for a system of code `system`.
void GetINFSectionNamesFor(OSCode system, std::vector<std::string>& names);

/// Makes a configured path absolute, on the base that the setup INI names.
/// @param path           Absolute when it holds a colon: then it stays as it is.
/// @param trailingSlash  Whether to end the result with a backslash.
[[nodiscard]] std::string ResolvePah(const std::string& path, bool trailingSlash);
