#include "SetupIni.h"

#include "InstallerSearch.h"
#include "KitLists.h"
#include "LocationInfo.h"
#include "OSVersion.h"

std::string SetupIniPath()
{
    return SetupIniIn(LocationInfo.setupDir);
}

int GetLevelsToRootFromINI()
{
    return ReadLevelsToRoot(InstallerSearch());
}

void ReadInfDirsFromIni(const std::string& section, std::vector<std::string>& dirs)
{
    ReadInfDirs(InstallerSearch(), section, dirs);
}

void ReadInfExcludeFilesFromINI(const std::string& section, std::vector<std::string>& excludes)
{
    ReadInfExcludes(InstallerSearch(), section, excludes);
}

void GetINFSectionNamesFromINI(std::vector<std::string>& names)
{
    GetINFSectionNamesFor(COSVersion().GetOSCode(), names);
}

void GetINFSectionNamesFor(OSCode system, std::vector<std::string>& names)
{
    ReadSectionNames(InstallerSearch(system), names);
}

std::string ResolvePah(const std::string& path, bool trailingSlash)
{
    return ResolveDirectory(InstallerSearch(), path, trailingSlash);
}
