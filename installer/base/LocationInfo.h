#pragma once

#include <string>

#include "LeadByte.h"

/// Where the program was started and where it lives.
struct LocationInfoRecord
{
    std::string invokedDir;  ///< current directory at start; gains a trailing backslash when the path is built from it
    std::string programName; ///< argv[0] as given
    std::string setupDir;    ///< the executable's directory, no trailing backslash; Morvix.ini is here
};

/// Written once by SetLocationInfo at start-up; read-only afterwards.
extern LocationInfoRecord LocationInfo;

/// @return the full path of the program named `programName`: the name itself when it holds ":" or a double backslash,
///         otherwise `invokedDir` and the name. In the second case `invokedDir` gains a trailing backslash if it had
///         none.
std::string FullProgramPath(const std::string& programName, std::string& invokedDir, LeadByteTest isLeadByte);

/// @return `path` up to and without its last backslash; the whole text when it has none.
std::string DirectoryOf(const std::string& path, LeadByteTest isLeadByte);
