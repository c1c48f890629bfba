#include "DriverFamilies.h"

const DriverFamily* FamilyOfInf(std::string_view upperFileName)
{
    for (const DriverFamily& family : kDriverFamilies) {
        if (upperFileName.find(family.infPrefix) != std::string_view::npos) {
            return &family;
        }
    }
    return nullptr;
}

std::string DriverFilePattern(const DriverFamily& family, bool is61System)
{
    const bool own = is61System && family.filesFor61 == FilesFor61::Own62;
    return std::string(family.infPrefix) + (own ? "62*.sys" : "*.sys");
}
