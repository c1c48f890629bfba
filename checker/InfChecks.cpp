#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <system_error>

#include "AsciiCase.h"
#include "Checks.h"
#include "EqualsIgnoringCase.h"
#include "HardwareIds.h"
#include "InfQualification.h"
#include "KitLists.h"
#include "NameList.h"

// The findings about INF files as a whole: whether they are searched, qualify, and have the sections that are named.

namespace {
/// @return the names of the model sections that Morvix.ini names for any system, as they are written, by their names in
///         upper case.
std::map<std::string, std::string> AllSectionNames(KitReading& reading)
{
    std::map<std::string, std::string> names;
    for (const std::string& system : SystemSections()) {
        for (const std::string& name : reading.IniOn(system).sectionNames) {
            if (!name.empty()) {
                names.try_emplace(UpperAscii(name), name);
            }
        }
    }
    return names;
}

/// @return the IDs that the installer compares in these sections of an INF file.
std::set<const KnownId*> IdsOf(InfFacts& inf, const std::map<std::string, std::string>& sections)
{
    std::set<const KnownId*> ids;
    for (const auto& [upper, name] : sections) {
        for (const ModelEntry& entry : inf.EntriesOf(name)) {
            ids.insert(entry.found);
        }
    }
    return ids;
}

/// @return the first line of any [Manufacturer] section whose value has the brand.
const SetupInf::Line* LineWithBrand(const InfFacts& inf)
{
    const std::vector<SetupInf::Line>& lines = inf.Setup().LinesOf("Manufacturer");
    const auto found = std::ranges::find_if(
        lines, [](const SetupInf::Line& line) { return std::ranges::any_of(line.fields, NamesOurBrand); });
    return found == lines.end() ? nullptr : &*found;
}

void CheckBrand(const KitCheck& check, const InfFacts& inf, const std::string& system)
{
    const SetupInf::Line* const line = LineWithBrand(inf);
    if (line == nullptr) {
        const std::vector<SetupInf::Line>& lines = inf.Setup().LinesOf("Manufacturer");
        check.Add(203, inf.Path(), lines.empty() ? inf.PlaceOfSection("Manufacturer") : lines.front().place,
                  "no value of [Manufacturer] is a brand of ours", system);
    } else if (line->section != inf.Text().FindSection("Manufacturer")) {
        check.Add(206, inf.Path(), inf.Text().SectionPlace(line->section),
                  "the brand is in a second section [Manufacturer]", system);
    } else {
        check.Add(204, inf.Path(), line->place, "the brand's line is beyond what is read of [Manufacturer]", system);
    }
}

/// @return the directories that any section of Morvix.ini names, those after a cut included: another finding tells of
///         them.
std::vector<std::string> NamedDirectories(KitReading& reading)
{
    std::vector<std::string> directories;
    for (const std::string& system : SystemSections()) {
        const SystemReading& on = reading.IniOn(system);
        for (const MarkedLine& marked : on.LinesWith(kDirectoryMarker)) {
            directories.push_back(reading.Resolve(on, marked.value));
        }
    }
    return directories;
}

/// @return the kit's INF files with a [Manufacturer] section, as paths on the machine.
std::vector<std::string> DriverInfsBelow(KitReading& reading)
{
    std::vector<std::string> paths;
    const KitFolder::Place& place = reading.Folder().Where();
    std::error_code error;
    std::filesystem::recursive_directory_iterator walk(
        place.folder, std::filesystem::directory_options::skip_permission_denied, error);
    for (; !error && walk != std::filesystem::recursive_directory_iterator(); walk.increment(error)) {
        const std::filesystem::path& file = walk->path();
        if (!EqualsIgnoringCase(file.extension().string(), ".inf") || !walk->is_regular_file(error)) {
            continue;
        }
        std::string name = file.lexically_relative(place.folder).generic_string();
        std::ranges::replace(name, '/', '\\');
        paths.push_back(place.setupDir + "\\" + name);
    }
    std::ranges::sort(paths);
    return paths;
}
} // namespace

void CheckUnsearchedInfs(const KitCheck& check)
{
    const std::vector<std::string> named = NamedDirectories(check.reading);
    for (const std::string& path : DriverInfsBelow(check.reading)) {
        const std::string directory = path.substr(0, path.rfind('\\') + 1);
        if (!ContainsName(named, directory) && check.reading.Inf(path).Text().FindSection("Manufacturer")) {
            check.Add(201, path, {}, "no section of Morvix.ini names this directory", {}, path);
        }
    }
}

void CheckQualification(const KitCheck& check, const SystemReading& on)
{
    for (const MetInf& met : on.infs) {
        if (!met.passedOver || *met.passedOver == InfVerdict::Excluded || !met.inf->IsMeantForOurs(on.sectionNames)) {
            continue;
        }
        if (*met.passedOver == InfVerdict::OtherSignature) {
            const auto entry = met.inf->Text().FindEntry("Version", "Signature");
            check.Add(
                202, met.inf->Path(), met.inf->PlaceOfKey("Version", "Signature"),
                entry && entry->value ? "the signature is " + std::string(*entry->value) : "there is no signature",
                on.system.section);
        } else {
            CheckBrand(check, *met.inf, on.system.section);
        }
    }
}

void CheckSectionNames(const KitCheck& check, const SystemReading& on)
{
    const bool someQualify = std::ranges::any_of(on.infs, &MetInf::Qualifies);
    const auto entry = check.reading.SetupIniText().FindEntry(on.system.section, "InfSectionName");
    if (!someQualify || !entry) {
        return;
    }
    for (const std::string& name : on.sectionNames) {
        const bool isOdd = name.empty() || name.find_first_of("; \t") != std::string::npos;
        const bool isThere = std::ranges::any_of(on.infs, [&name](const MetInf& met) {
            return met.Qualifies() && met.inf->Text().FindSection(name).has_value();
        });
        if (!isOdd && !isThere) {
            check.Add(205, check.reading.SetupIni(), entry->valuePlace,
                      "no INF file of the section's directories has " + InBrackets(name), on.system.section);
        }
    }
}

void CheckUnnamedSections(const KitCheck& check)
{
    const std::map<std::string, std::string> named = AllSectionNames(check.reading);
    if (named.empty()) {
        return;
    }
    std::set<const InfFacts*> done;
    for (const std::string& system : check.systems) {
        for (const MetInf& met : check.reading.On(system).infs) {
            if (!met.Qualifies() || !done.insert(met.inf).second) {
                continue;
            }
            std::optional<std::set<const KnownId*>> listed;
            for (const std::string& section : met.inf->ModelSections()) {
                if (named.contains(UpperAscii(section))) {
                    continue;
                }
                if (!listed) {
                    listed = IdsOf(*met.inf, named);
                }
                const std::vector<ModelEntry>& entries = met.inf->EntriesOf(section);
                const auto only = std::ranges::find_if(entries, [&listed](const ModelEntry& entry) {
                    return entry.ServesDevice() && !listed->contains(entry.found);
                });
                if (only != entries.end()) {
                    check.Add(
                        205, met.inf->Path(), met.inf->PlaceOfSection(section),
                        "no InfSectionName has " + InBrackets(section) + ", which alone lists " + only->found->text);
                }
            }
        }
    }
}
