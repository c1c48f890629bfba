#include "InstallResult.h"

#include <cstddef>

#include "DriverFamilies.h"
#include "OSPredicates.h"
#include "TwoByteText.h"
#include "UpperCase.h"

namespace {
/// @return the text from its last backslash on; the whole text, which no family's prefix fits, when it has none.
std::string_view FileNameOf(std::string_view path, LeadByteTest isLeadByte)
{
    const std::size_t backslash = LastBackslash(path, isLeadByte);
    return backslash == std::string_view::npos ? path : path.substr(backslash);
}
} // namespace

std::optional<ExpectedResult> ExpectedResultOf(std::string_view infPath, OSCode system, LeadByteTest isLeadByte)
{
    const DriverFamily* const family = FamilyOfInf(FileNameOf(infPath, isLeadByte));
    if (family == nullptr) {
        return std::nullopt;
    }
    const bool is61System = IsWin7Family(system) || IsWin2K8R2Family(system);
    return ExpectedResult{.valueName = std::string(family->resultPrefix) + "Install",
                          .filePattern = DriverFilePattern(*family, is61System)};
}

std::optional<ExpectedResult> ClassifyInf(std::span<char> infPath, OSCode system, LeadByteTest isLeadByte,
                                          SearchLog& log)
{
    const std::string_view path(infPath.data(), infPath.size());
    log.Say("inf file name and path is ->");
    log.Say(path);
    log.Say("inf file name is ->");
    log.Say(FileNameOf(path, isLeadByte));
    MakeUpperCase(infPath, isLeadByte);
    std::optional<ExpectedResult> expected = ExpectedResultOf(path, system, isLeadByte);
    if (!expected) {
        log.Say("A device other than a network device was installed");
    }
    return expected;
}
