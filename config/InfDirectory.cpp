#include "InfDirectory.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <memory>

#include "DriverInstallRecord.h"
#include "EqualsIgnoringCase.h"
#include "InfCopies.h"
#include "InfDevices.h"
#include "InfQualification.h"
#include "IniLines.h"
#include "KitLists.h"
#include "NameList.h"
#include "PathResolution.h"

namespace {
constexpr std::size_t kSignatureBytes = 100;
constexpr std::size_t kManufacturerKeysBytes = 100;
constexpr std::size_t kManufacturerValueBytes = 500;

bool SignatureMatches(const KitSearch& search, const std::string& infPath, const std::string& expectedSignature)
{
    std::array<char, kSignatureBytes> signature{};
    search.source.ReadText("Version", "Signature", "", signature, infPath);
    return EqualsIgnoringCase(TextIn(signature), expectedSignature);
}

bool IsFromOurBrand(const KitSearch& search, const std::string& infPath)
{
    std::array<char, kManufacturerKeysBytes> keys{};
    search.source.ReadText("Manufacturer", nullptr, "Manufacturer", keys, infPath);
    return std::ranges::any_of(LinesOf(keys), [&](std::string_view key) {
        std::array<char, kManufacturerValueBytes> value{};
        search.source.ReadText("Manufacturer", std::string(key).c_str(), "", value, infPath);
        return NamesOurBrand(TextIn(value));
    });
}
} // namespace

InfSearchRules ReadSearchRules(const KitSearch& search, const std::vector<std::string>& excludes)
{
    InfSearchRules rules;
    rules.expectedSignature = ExpectedSignature(search.family);
    ReadSectionNames(search, rules.sectionNames);
    if (!search.forceInfScan) {
        rules.excludes = excludes;
    }
    return rules;
}

std::optional<std::string> FindInf(const KitSearch& search, std::string_view key, const std::string& directory,
                                   const std::vector<std::string>& excludes)
{
    search.log.Say("Entering - GetInfFile");
    search.log.Say("GetInfFile(), key:[[", key, "]], dir:", directory, "\n");
    const InfSearchRules rules = ReadSearchRules(search, excludes);
    std::optional<std::string> found =
        FindInfByRules(search, std::string(key), WithTrailingBackslash(directory, search.isLeadByte), rules);
    search.log.Say("done processing infs in this directory\n");
    return found;
}

std::optional<std::string> FindInfByRules(const KitSearch& search, const std::string& key,
                                          const std::string& directoryPath, const InfSearchRules& rules)
{
    const std::unique_ptr<InfListing> listing = search.source.List(directoryPath);
    if (!listing) {
        return std::nullopt;
    }
    for (const InfEntry* entry = listing->Next(); entry != nullptr; entry = listing->Next()) {
        const InfVerdict verdict = JudgeInf(search, key, entry->name, directoryPath, rules);
        search.log.InfJudged(directoryPath + entry->name, verdict);
        switch (verdict) {
            case InfVerdict::ListsDevice:
                return directoryPath + entry->name;
            case InfVerdict::Excluded:
            case InfVerdict::OtherSignature:
            case InfVerdict::OtherBrand:
            case InfVerdict::NotListed:
                break;
        }
    }
    return std::nullopt;
}

InfVerdict JudgeInf(const KitSearch& search, const std::string& key, const std::string& fileName,
                    const std::string& directoryPath, const InfSearchRules& rules)
{
    search.log.Say("processing: ", fileName, "\n");
    if (ContainsName(rules.excludes, fileName)) {
        return InfVerdict::Excluded;
    }
    const std::string fullPath = directoryPath + fileName;
    BeginsWithUtf16Mark(search, fullPath);
    if (const auto reason = WhyNotQualified(search, fullPath, rules.expectedSignature)) {
        return *reason;
    }
    StoreInfOnce(search, fileName, fullPath, directoryPath);
    const bool listed = std::ranges::any_of(rules.sectionNames, [&](const std::string& section) {
        return ListsDevice(search, key, section.c_str(), fullPath);
    });
    return listed ? InfVerdict::ListsDevice : InfVerdict::NotListed;
}

std::optional<InfVerdict> WhyNotQualified(const KitSearch& search, const std::string& infPath,
                                          const std::string& expectedSignature)
{
    if (!SignatureMatches(search, infPath, expectedSignature)) {
        search.log.Say("signature section match for this OS not found\n");
        return InfVerdict::OtherSignature;
    }
    if (!IsFromOurBrand(search, infPath)) {
        return InfVerdict::OtherBrand;
    }
    return std::nullopt;
}
