#pragma once

#include <string>
#include <vector>

/// Adapters that the sample kit serves, one of each driver family in it. Each is found in another pass or by another
/// rule.
struct KitAdapter
{
    const char* deviceId;
    const char* driver;       ///< start of the names of its files
    const char* resultPrefix; ///< start of the names of the result values
    int pass;                 ///< the pass that finds it
};

/// In the order in which the registry lists them.
inline const std::vector<KitAdapter> kKitAdapters = {
    {"VEN_5D1A&DEV_1A2B&SUBSYS_00015D1A&REV_01", "ngea", "TAVG_PCIE_", 1},
    {"VEN_5D1A&DEV_1B3C&SUBSYS_00015D1A&REV_02", "nxga", "TAVX_", 2},
    {"VEN_5D1A&DEV_1C4D&SUBSYS_00025D1A&REV_03", "nf6a", "TAVF_", 4},
    {"VEN_5D1A&DEV_1D5E&SUBSYS_00015D1A&REV_04", "ngp1", "TAVG_", 2},
};

/// A kit folder and the number in the names of its INF files.
struct KitSystem
{
    const char* folder;
    const char* number;
};

/// @param driver  Start of the name, such as "ngea".
/// @return the file name of a kit driver: "ngea62x64.sys" for the 6.1 systems, "ngea.sys" for all others.
[[nodiscard]] inline std::string KitDriverFile(const std::string& driver, const KitSystem& system)
{
    const std::string number = system.number;
    return driver + (number == "62" ? "62x64.sys" : ".sys");
}
