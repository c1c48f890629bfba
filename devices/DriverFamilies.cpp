#include "DriverFamilies.h"

const DriverFamily* FamilyOfInf(std::string_view upperFileName)
{
    for (const DriverFamily& family : kDriverFamilies) {
        if (upperFileName.starts_with(family.infPrefix)) {
            return &family;
        }
    }
    return nullptr;
}

std::string DriverFilePattern(const DriverFamily& family, bool is61System)
{
    const bool named62 = is61System && family.filesFor61 == DriverFilesFor61::Named62;
    return std::string(family.infPrefix) + (named62 ? "62*.sys" : "*.sys");
}
