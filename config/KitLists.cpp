#include "KitLists.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "IniLines.h"
#include "PathResolution.h"

namespace {
constexpr std::size_t kValueBytes = 260;
constexpr std::size_t kFirstSectionBytes = 260;
constexpr std::size_t kMostSectionBytes = 32767;
constexpr std::size_t kExcludeSectionBytes = 1024;
constexpr char kSectionFailed[] = "GetPrivateProfileSection() failed";
constexpr bool kWithTrailingSlash = true;

std::string ReadValue(const KitSearch& search, const std::string& section, const char* key)
{
    std::array<char, kValueBytes> value{};
    search.source.ReadText(section.c_str(), key, "", value, SetupIniIn(search.setupDir));
    return value.data();
}

std::vector<char> ReadDirectorySection(const KitSearch& search, const std::string& section)
{
    const std::string file = SetupIniIn(search.setupDir);
    std::vector<char> buffer(kFirstSectionBytes);
    const uint32_t count = search.source.ReadSection(section.c_str(), buffer, file);
    if (count == 0) {
        search.log.Say(kSectionFailed);
    }
    constexpr std::size_t kCutCount = kFirstSectionBytes - 2;
    bool cut = count == kCutCount;
    while (cut) {
        search.log.Say("GetPrivateProfileSection() increasing size of section buffer\n");
        const std::size_t size = buffer.size() * 2;
        if (size > kMostSectionBytes) {
            search.log.Say("GetPrivateProfileSection() failed for section being too large\n");
            break;
        }
        buffer.assign(size, '\0');
        search.source.ReadSection(section.c_str(), buffer, file);
        // It is the size that is compared here, not the count, so the buffer grows once, to 520 bytes, and a longer
        // section stays cut. Kits are made to that limit.
        cut = size - 2 == kCutCount;
    }
    return buffer;
}

/// Hands the value of each line that holds `marker` to `use`.
template <class Use>
void ForEachValue(std::span<const char> section, std::string_view marker, Use use)
{
    for (const std::string_view line : LinesOf(section)) {
        if (const auto value = ValueAfterLast(line, marker)) {
            use(std::string(*value));
        }
    }
}
} // namespace

std::string SetupIniIn(const std::string& setupDir)
{
    return setupDir + "\\Morvix.ini";
}

int ReadLevelsToRoot(const KitSearch& search)
{
    search.log.Say("Entering - GetLevelsToRootFromINI");
    return LeadingNumber(ReadValue(search, "Config", "LevelsToRoot"));
}

void ReadInfDirs(const KitSearch& search, const std::string& section, std::vector<std::string>& directories)
{
    search.log.Say("Entering - ReadInfDirsFromIni");
    ForEachValue(ReadDirectorySection(search, section), kDirectoryMarker, [&](const std::string& value) {
        directories.push_back(ResolveDirectory(search, value, kWithTrailingSlash));
    });
}

void ReadInfExcludes(const KitSearch& search, const std::string& section, std::vector<std::string>& excludes)
{
    search.log.Say("Entering - ReadInfExcludeFilesFromINI");
    std::array<char, kExcludeSectionBytes> buffer{};
    if (search.source.ReadSection(section.c_str(), buffer, SetupIniIn(search.setupDir)) == 0) {
        search.log.Say(kSectionFailed);
    }
    search.log.Say("INFs to exclude:");
    ForEachValue(buffer, kExcludeMarker, [&](const std::string& value) {
        excludes.push_back(value);
        search.log.Say(value);
    });
}

void ReadSectionNames(const KitSearch& search, std::vector<std::string>& names)
{
    search.log.Say("Entering - GetINFSectionNamesFromINI");
    std::string value;
    if (IsServed(search.system)) {
        value = ReadValue(search, std::string(RowOf(search.system).sectionKey), "InfSectionName");
    } else {
        search.log.Say("unsupported OS, unable to get section name\n");
    }
    search.log.Say("section names from ini: ", value, "\n");
    for (const std::string& name : SplitFromEnd(value)) {
        names.push_back(name);
        search.log.Say("added section name: ", name, "\n");
    }
}

void ReadInfLists(const KitSearch& search, std::vector<std::string>& directories, std::vector<std::string>& excludes)
{
    search.log.Say("Entering - GetInfDirs");
    search.log.Say("reading ini file for candidate directories\n");
    const SystemRow& row = RowOf(search.system);
    search.log.Say(row.detectionLine);
    if (IsServed(search.system)) {
        ReadInfDirs(search, std::string(row.sectionKey), directories);
        ReadInfExcludes(search, std::string(row.sectionKey), excludes);
    }
    std::vector<std::string_view> line{"infdirs: "};
    for (const std::string& directory : directories) {
        line.insert(line.end(), {"[", directory, "] "});
    }
    line.emplace_back("\n");
    search.log.SayPieces(line);
}

std::string ResolveDirectory(const KitSearch& search, const std::string& path, bool trailingSlash)
{
    search.log.Say("Entering - ResolvePah");
    search.log.Reached(SearchStep::DirectoryResolved);
    const std::string resolved =
        IsAbsolutePath(path) ? path
                             : ResolveRelativePath(path, search.setupDir, ReadLevelsToRoot(search), search.isLeadByte);
    return trailingSlash ? WithTrailingBackslash(resolved, search.isLeadByte) : resolved;
}
