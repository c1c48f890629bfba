#pragma once

#include <string>

#include "KitSearch.h"

/// How the search for a device's INF ended.
enum class SearchVerdict
{
    Matched,
    NoInf, ///< no INF lists the device in any of the four passes
    Fault, ///< the key name has no revision that the third pass could keep: the installer's run ends here
};

struct DeviceMatch
{
    SearchVerdict verdict = SearchVerdict::NoInf;
    int pass = 0;             ///< the pass that ended the search
    std::string infPath;      ///< full path of the INF as it was found; empty without a match
    std::string recordPath;   ///< the same in upper case, as the install record holds it; empty when it does not fit
    bool isDmaEngine = false; ///< it is the INF of the DMA engines
};

/// Searches for the INF of an accepted device: reads the lists of the setup INI, then looks in up to four passes with
/// ever shorter IDs into every directory. The first match ends the search.
/// @param deviceId  Device key name in full.
[[nodiscard]] DeviceMatch SearchForDevice(const KitSearch& search, const std::string& deviceId);
