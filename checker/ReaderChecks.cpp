#include <algorithm>
#include <map>
#include <optional>
#include <set>

#include "AsciiCase.h"
#include "Checks.h"
#include "EqualsIgnoringCase.h"
#include "FileNames.h"
#include "FolderListing.h"
#include "HardwareIds.h"

// The findings where the answer depends on the platform that reads, or on the file system.

namespace {
std::set<std::string> IdsOf(InfFacts& inf, const std::vector<std::string>& sections)
{
    std::set<std::string> ids;
    for (const std::string& section : sections) {
        for (const ModelEntry& entry : inf.EntriesOf(section)) {
            ids.insert(entry.found == nullptr ? std::string() : entry.found->text);
        }
    }
    return ids;
}

/// @return what a reader makes of each line of a file.
std::map<uint32_t, std::string> LinesAsRead(const Profile& text)
{
    std::map<uint32_t, std::string> lines;
    for (std::size_t section = 0; section < text.SectionCount(); ++section) {
        lines[text.SectionPlace(section).line] = "[" + std::string(text.SectionName(section));
        for (std::size_t index = 0; index < text.EntryCount(section); ++index) {
            const Profile::Entry entry = text.EntryAt(section, index);
            std::string& line = lines[entry.namePlace.line];
            line = std::string(entry.name);
            line += entry.value ? "=" + std::string(*entry.value) : std::string();
        }
    }
    lines.erase(0);
    return lines;
}

/// @return the first line that the readers take differently.
std::optional<ProfilePlace> FirstDifference(const Profile& text, const Profile& other)
{
    const std::map<uint32_t, std::string> lines = LinesAsRead(text);
    const std::map<uint32_t, std::string> others = LinesAsRead(other);
    const auto [line, second] = std::ranges::mismatch(lines, others);
    if (line == lines.end() && second == others.end()) {
        return std::nullopt;
    }
    const uint32_t number = line == lines.end()      ? second->first
                            : second == others.end() ? line->first
                                                     : std::min(line->first, second->first);
    return ProfilePlace{.line = number, .column = 1, .byteColumn = 1};
}

/// @return the first line of a section of Morvix.ini that the readers take differently.
ProfilePlace DifferenceOf(const SystemReading& on, const SystemReading& other, const Profile& text,
                          const Profile& otherText)
{
    for (std::size_t line = 0; line < on.lines.size() && line < other.lines.size(); ++line) {
        if (on.lines[line].text != other.lines[line].text) {
            return on.lines[line].place;
        }
    }
    return FirstDifference(text, otherText).value_or(on.place);
}

void CompareSetupIni(const KitCheck& check, KitReading& other)
{
    for (const std::string& system : check.systems) {
        const SystemReading& one = check.reading.IniOn(system);
        const SystemReading& two = other.IniOn(system);
        if (one.directories != two.directories || one.excludes != two.excludes ||
            one.sectionNames != two.sectionNames) {
            check.Add(601, check.reading.SetupIni(),
                      DifferenceOf(one, two, check.reading.SetupIniText(), other.SetupIniText()),
                      "Windows and Wine read different directories, exclusions or names", system);
        }
    }
}

void CompareInfs(const KitCheck& check, KitReading& other)
{
    std::map<std::string, std::optional<ProfilePlace>> differences;
    for (const std::string& system : check.systems) {
        const SystemReading& on = check.reading.On(system);
        for (const MetInf& met : on.infs) {
            const std::string& path = met.inf->Path();
            const auto [known, isNew] = differences.try_emplace(path);
            // Nearly all files are read alike. Those are not read again.
            if (isNew && !met.inf->Text().IsReadAlike()) {
                known->second = FirstDifference(met.inf->Text(), other.Source().File(path).Text());
            }
            if (!known->second) {
                continue;
            }
            const std::vector<MetInf>& others = other.On(system).infs;
            const auto same =
                std::ranges::find_if(others, [&path](const MetInf& two) { return two.inf->Path() == path; });
            if (same != others.end() && (same->passedOver != met.passedOver ||
                                         IdsOf(*same->inf, on.sectionNames) != IdsOf(*met.inf, on.sectionNames))) {
                check.Add(601, path, *known->second, "Windows and Wine find different adapters in this file", system);
            }
        }
    }
}
} // namespace

void CheckReaders(const KitCheck& check, KitReading& other)
{
    CompareSetupIni(check, other);
    CompareInfs(check, other);
}

void CheckFileNames(const KitCheck& check, const SystemReading& on)
{
    for (const std::string& directory : on.directories) {
        const auto here = check.reading.Folder().Paths().Find(directory);
        if (!here || check.reading.Folder().InfsIn(directory) == nullptr) {
            continue;
        }
        std::map<std::string, std::string> known;
        for (const std::string& name : ListInfNames(NamesIn(*here))) {
            const auto [first, isNew] = known.try_emplace(UpperAscii(name), name);
            if (!UpperAscii(name).ends_with(".INF")) {
                check.Add(602, directory + name, {}, name + " is found by its short name", on.system.section,
                          directory + name);
            } else if (!isNew) {
                check.Add(602, directory + name, {}, "differs from " + first->second + " in letter case only",
                          on.system.section, directory + name);
            }
        }
    }
}
