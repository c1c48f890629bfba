#include "SetupLocation.h"

#include <windows.h>

#include <array>

#include "LocationInfo.h"
#include "Trace.h"

namespace {
bool IsFile(const std::string& path)
{
    const DWORD attributes = GetFileAttributesA(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
}
} // namespace

int SetLocationInfo(const std::string& programName)
{
    Trace("Entering - SetLocationInfo");
    std::array<char, MAX_PATH> directory{};
    GetCurrentDirectoryA(MAX_PATH, directory.data());
    LocationInfo.invokedDir = directory.data();
    Trace("invoked dir: ", LocationInfo.invokedDir, "\n");
    LocationInfo.programName = programName;
    Trace("program name: ", LocationInfo.programName, "\n");

    const std::string fullPath = FullProgramPath(LocationInfo.programName, LocationInfo.invokedDir, IsSystemLeadByte);
    Trace("full path: ", fullPath, "\n");
    LocationInfo.setupDir = DirectoryOf(fullPath, IsSystemLeadByte);
    Trace("Morvix dir: ", LocationInfo.setupDir, "\n");

    const std::string iniFile = LocationInfo.setupDir + R"(\Morvix.ini)";
    const bool found = IsFile(iniFile);
    Trace("ini file: ", iniFile, (found ? "\n" : ", NOT FOUND\n"));
    return found ? 1 : 0;
}
