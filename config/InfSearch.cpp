#include "InfSearch.h"

#include <cstddef>
#include <optional>

#include "InfDirectory.h"
#include "InstallerSearch.h"
#include "KitLists.h"
#include "OSVersion.h"
#include "OrvSecure.h"

namespace {
constexpr std::size_t kInfPathBytes = 260;
}

void GetInfDirs(std::vector<std::string>& directories, std::vector<std::string>& excludes)
{
    GetInfDirsFor(COSVersion().GetOSCode(), directories, excludes);
}

void GetInfDirsFor(OSCode system, std::vector<std::string>& directories, std::vector<std::string>& excludes)
{
    ReadInfLists(InstallerSearch(system), directories, excludes);
}

bool GetInfFile(const char* key, const std::string& directory, const DriverInstallRecord& record, char* infPath,
                const std::vector<std::string>& excludes)
{
    const InstallerSearch search(COSVersion().GetOSCode(), FamilyOf(record));
    const std::optional<std::string> found = FindInf(search, key == nullptr ? "" : key, directory, excludes);
    if (!found) {
        return false;
    }
    OrvSafeCopy("InfSearch", __LINE__, infPath, kInfPathBytes, found->c_str());
    return true;
}
