#include "SetupIni.h"

#include <windows.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "IniLines.h"
#include "LocationInfo.h"
#include "OSVersion.h"
#include "PathResolution.h"
#include "ProfileReading.h"
#include "Trace.h"

namespace {
constexpr std::size_t kValueBytes = 260;
constexpr std::size_t kFirstSectionBytes = 260;
constexpr std::size_t kMostSectionBytes = 32767;
constexpr std::size_t kExcludeSectionBytes = 1024;
constexpr std::string_view kDirectoryMarker = "InfDir=";
constexpr std::string_view kExcludeMarker = "InfExclude=";
constexpr char kSectionFailed[] = "GetPrivateProfileSection() failed";
constexpr bool kWithTrailingSlash = true;

std::string ReadValue(const char* section, const char* key)
{
    std::array<char, kValueBytes> value{};
    ReadProfileText(section, key, "", value, SetupIniPath());
    return value.data();
}

std::vector<char> ReadDirectorySection(const std::string& section)
{
    std::vector<char> buffer(kFirstSectionBytes);
    const uint32_t count = ReadProfileSection(section.c_str(), buffer, SetupIniPath());
    if (count == 0) {
        Trace(kSectionFailed);
        return buffer;
    }
    constexpr std::size_t kCutCount = kFirstSectionBytes - 2;
    bool cut = count == kCutCount;
    while (cut) {
        Trace("GetPrivateProfileSection() increasing size of section buffer\n");
        const std::size_t size = buffer.size() * 2;
        if (size > kMostSectionBytes) {
            Trace("GetPrivateProfileSection() failed for section being too large\n");
            break;
        }
        buffer.assign(size, '\0');
        ReadProfileSection(section.c_str(), buffer, SetupIniPath());
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
        if (const auto value = ValueBehindLast(line, marker)) {
            use(std::string(*value));
        }
    }
}
} // namespace

std::string SetupIniPath()
{
    return LocationInfo.setupDir + "\\Morvix.ini";
}

int GetLevelsToRootFromINI()
{
    Trace("Entering - GetLevelsToRootFromINI");
    return LeadingNumber(ReadValue("Config", "LevelsToRoot"));
}

void ReadInfDirsFromIni(const std::string& section, std::vector<std::string>& dirs)
{
    Trace("Entering - ReadInfDirsFromIni");
    ForEachValue(ReadDirectorySection(section), kDirectoryMarker,
                 [&dirs](const std::string& value) { dirs.push_back(ResolvePah(value, kWithTrailingSlash)); });
}

void ReadInfExcludeFilesFromINI(const std::string& section, std::vector<std::string>& excludes)
{
    Trace("Entering - ReadInfExcludeFilesFromINI");
    std::array<char, kExcludeSectionBytes> buffer{};
    if (ReadProfileSection(section.c_str(), buffer, SetupIniPath()) == 0) {
        Trace(kSectionFailed);
    }
    Trace("INFs to exclude:");
    ForEachValue(buffer, kExcludeMarker, [&excludes](const std::string& value) {
        excludes.push_back(value);
        Trace(value);
    });
}

void GetINFSectionNamesFromINI(std::vector<std::string>& names)
{
    GetINFSectionNamesFor(COSVersion().GetOSCode(), names);
}

void GetINFSectionNamesFor(OSCode system, std::vector<std::string>& names)
{
    Trace("Entering - GetINFSectionNamesFromINI");
    std::string value;
    if (IsServed(system)) {
        value = ReadValue(std::string(RowOf(system).sectionKey).c_str(), "InfSectionName");
    } else {
        Trace("unsupported OS, unable to get section name\n");
    }
    Trace("section names from ini: ", value, "\n");
    for (const std::string& name : SplitFromEnd(value)) {
        names.push_back(name);
        Trace("added section name: ", name, "\n");
    }
}

std::string ResolvePah(const std::string& path, bool trailingSlash)
{
    Trace("Entering - ResolvePah");
    // Paths are resolved against the program's directory; the current directory is read and has no part in it.
    std::array<char, MAX_PATH> currentDirectory{};
    GetCurrentDirectoryA(MAX_PATH, currentDirectory.data());
    const std::string resolved = IsAbsolutePath(path) ? path
                                                      : ResolveRelativePath(path, LocationInfo.setupDir,
                                                                            GetLevelsToRootFromINI(), IsSystemLeadByte);
    return trailingSlash ? WithTrailingBackslash(resolved, IsSystemLeadByte) : resolved;
}
