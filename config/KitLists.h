#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "KitSearch.h"

/// What the setup INI "Morvix.ini" says: which directories hold the INF files of a system, which INF files to leave
/// out, and which model sections count. Nothing here fails: what is missing reads as empty.

/// What makes a line of a system's section name a directory or an INF file to leave out, wherever it is in the line.
inline constexpr std::string_view kDirectoryMarker = "InfDir=";
inline constexpr std::string_view kExcludeMarker = "InfExclude=";

/// @return the full path of the setup INI of a program in `setupDir`.
[[nodiscard]] std::string SetupIniIn(const std::string& setupDir);

/// @return the number of levels by which the base of relative directories is above the program's directory, as it is
///         in the file: "LevelsToRoot" of section "Config", 0 when missing or not a number.
[[nodiscard]] int ReadLevelsToRoot(const KitSearch& search);

/// Appends the directories of the "InfDir" lines, resolved to absolute paths with a backslash at the end, in file
/// order. The section is read into 260 bytes and, if it was cut, once more into 520; the rest is lost.
/// @param section  The system's section key.
void ReadInfDirs(const KitSearch& search, const std::string& section, std::vector<std::string>& directories);

/// Appends the file names of the "InfExclude" lines as they are written, in file order. At most 1022 characters of the
/// section are read.
/// @param section  The system's section key.
void ReadInfExcludes(const KitSearch& search, const std::string& section, std::vector<std::string>& excludes);

/// Appends the names of the model sections that count on the search's system: those of "InfSectionName", the last name
/// of the value first. Blanks around the commas belong to the names. A missing value, or a system that is not served,
/// gives one empty name.
void ReadSectionNames(const KitSearch& search, std::vector<std::string>& names);

/// Reads directories and excluded file names for the search's system: none for a system that is not served.
void ReadInfLists(const KitSearch& search, std::vector<std::string>& directories, std::vector<std::string>& excludes);

/// Makes a configured path absolute, on the base that the setup INI names.
/// @param path           Absolute when it holds a colon: then it stays as it is.
/// @param trailingSlash  Whether to end the result with a backslash.
[[nodiscard]] std::string ResolveDirectory(const KitSearch& search, const std::string& path, bool trailingSlash);
