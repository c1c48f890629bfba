#include "InfReader.h"

#include "InfDevices.h"
#include "InstallerSearch.h"

std::array<char, 256> matchedHardwareId;
std::array<char, 260> deviceDescription;

int ParseINFile(const char* key, const char* sectionName, const char* infPath)
{
    return ListsDevice(InstallerSearch(), key == nullptr ? "" : key, sectionName, infPath == nullptr ? "" : infPath)
               ? 1
               : 0;
}

int IsFileUnicode(const std::string& path)
{
    return BeginsWithUtf16Mark(InstallerSearch(), path) ? 1 : 0;
}
