#include "InfSearch.h"

#include <windows.h>

#include <algorithm>
#include <array>
#include <cstddef>

#include "AnswerReuse.h"
#include "EqualsIgnoringCase.h"
#include "Handles.h"
#include "InfQualification.h"
#include "InfReader.h"
#include "IniLines.h"
#include "OSVersion.h"
#include "OrvSecure.h"
#include "PathResolution.h"
#include "ProfileReading.h"
#include "RunOptions.h"
#include "SetupIni.h"
#include "Trace.h"

namespace {
constexpr std::size_t kInfPathBytes = 260;
constexpr std::size_t kSignatureBytes = 100;
constexpr std::size_t kManufacturerKeysBytes = 100;
constexpr std::size_t kManufacturerValueBytes = 500;

bool SignatureMatches(const std::string& infPath, const std::string& expectedSignature)
{
    std::array<char, kSignatureBytes> signature{};
    ReadProfileText("Version", "Signature", "", signature, infPath);
    return EqualsIgnoringCase(TextIn(signature), expectedSignature);
}

bool IsFromOurBrand(const std::string& infPath)
{
    std::array<char, kManufacturerKeysBytes> keys{};
    ReadProfileText("Manufacturer", nullptr, "Manufacturer", keys, infPath);
    return std::ranges::any_of(LinesOf(keys), [&infPath](std::string_view key) {
        std::array<char, kManufacturerValueBytes> value{};
        ReadProfileText("Manufacturer", std::string(key).c_str(), "", value, infPath);
        return NamesOurBrand(TextIn(value));
    });
}

/// @return true when the INF qualifies and lists the device `key`.
bool InfServesDevice(const char* key, const WIN32_FIND_DATAA& file, const std::string& directoryPath,
                     const InfSearchRules& rules)
{
    const std::string fileName = file.cFileName;
    Trace("processing: ", fileName, "\n");
    if (ContainsName(rules.excludes, fileName)) {
        return false;
    }
    const std::string fullPath = directoryPath + fileName;
    const FileVisit visit(fullPath, file);
    // What the file is encoded in is only traced: the platform reads both forms.
    IsFileUnicode(fullPath);
    if (!InfQualifies(fullPath, rules.expectedSignature)) {
        return false;
    }
    CopyInfOnce(fileName, fullPath, directoryPath);
    return std::ranges::any_of(rules.sectionNames, [&](const std::string& section) {
        return ParseINFile(key, section.c_str(), fullPath.c_str()) != 0;
    });
}
} // namespace

void GetInfDirs(std::vector<std::string>& directories, std::vector<std::string>& excludes)
{
    GetInfDirsFor(COSVersion().GetOSCode(), directories, excludes);
}

void GetInfDirsFor(OSCode system, std::vector<std::string>& directories, std::vector<std::string>& excludes)
{
    Trace("Entering - GetInfDirs");
    Trace("reading ini file for candidate directories\n");
    const SystemRow& row = RowOf(system);
    Trace(row.detectionLine);
    if (IsServed(system)) {
        ReadInfDirsFromIni(std::string(row.sectionKey), directories);
        ReadInfExcludeFilesFromINI(std::string(row.sectionKey), excludes);
    }
    std::vector<std::string_view> line{"infdirs: "};
    for (const std::string& directory : directories) {
        line.insert(line.end(), {"[", directory, "] "});
    }
    line.emplace_back("\n");
    TracePieces(line);
}

bool GetInfFile(const char* key, const std::string& directory, const DriverInstallRecord& record, char* infPath,
                const std::vector<std::string>& excludes)
{
    Trace("Entering - GetInfFile");
    Trace("GetInfFile(), key:[[", key == nullptr ? "" : key, "]], dir:", directory, "\n");
    const InfSearchRules rules =
        InfSearchRulesFor(COSVersion().GetOSCode(), FamilyOf(record), RunOptions.forceInfScan, excludes);
    const std::string found = FindInfInDirectory(key, WithTrailingBackslash(directory, IsSystemLeadByte), rules);
    if (!found.empty()) {
        OrvSafeCopy("InfSearch", __LINE__, infPath, kInfPathBytes, found.c_str());
    }
    Trace("done processing infs in this directory\n");
    return !found.empty();
}

InfSearchRules InfSearchRulesFor(OSCode system, std::string_view family, bool forceInfScan,
                                 const std::vector<std::string>& excludes)
{
    InfSearchRules rules;
    rules.expectedSignature = ExpectedSignature(family);
    GetINFSectionNamesFor(system, rules.sectionNames);
    if (!forceInfScan) {
        rules.excludes = excludes;
    }
    return rules;
}

std::string FindInfInDirectory(const char* key, const std::string& directoryPath, const InfSearchRules& rules)
{
    WIN32_FIND_DATAA file{};
    UniqueSearch search(FindFirstFileA((directoryPath + "*.inf").c_str(), &file));
    if (!search.IsOpen()) {
        return {};
    }
    std::string infPath;
    do {
        if (InfServesDevice(key, file, directoryPath, rules)) {
            infPath = directoryPath + file.cFileName;
        }
    } while (infPath.empty() && FindNextFileA(search.Get(), &file) != FALSE);
    // The search stays open for the rest of the run: one handle per directory searched, by design.
    static_cast<void>(search.Release());
    return infPath;
}

bool InfQualifies(const std::string& infPath, const std::string& expectedSignature)
{
    if (!SignatureMatches(infPath, expectedSignature)) {
        Trace("signature section match for this OS not found\n");
        return false;
    }
    return IsFromOurBrand(infPath);
}
