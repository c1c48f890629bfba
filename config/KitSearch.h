#pragma once

#include <span>
#include <string>
#include <vector>

#include "KitSource.h"
#include "LeadByte.h"
#include "OSCode.h"
#include "SearchLog.h"

/// All that a search for INF files depends on. Nothing else is read or changed: searches with their own sources, logs
/// and texts run side by side in several threads.
struct KitSearch
{
    KitSource& source;
    SearchLog& log;
    std::string setupDir;                 ///< the directory of Morvix.ini, without a trailing backslash
    OSCode system;                        ///< the system that the kit is searched for
    std::string family;                   ///< its family, as the install record names it
    bool forceInfScan = false;            ///< INF files that the setup INI excludes are searched all the same
    LeadByteTest isLeadByte;              ///< of the code page of the system's paths
    std::vector<std::string>& storedInfs; ///< file names handed to the driver store in this run; appended to
    /// Receives the normalised hardware ID of the line that matched last, with a terminator. Not empty.
    std::span<char> matchedHardwareId;
    /// Receives the description that was looked up last, with a terminator. Not empty.
    std::span<char> deviceDescription;
};
