#include "ResultRecords.h"

#include "RecordNames.h"

namespace {
constexpr std::string_view kFamilyEnd = "_Install";
} // namespace

bool IsFailureRecord(std::string_view valueName, std::string_view text)
{
    return text == kResultFailure && (valueName == kInstallValue || !FamilyOfRecord(valueName).empty());
}

std::string FamilyOfRecord(std::string_view valueName)
{
    if (!valueName.ends_with(kFamilyEnd)) {
        return {};
    }
    return std::string(valueName.substr(0, valueName.size() - kFamilyEnd.size()));
}
