#include <algorithm>
#include <optional>

#include "Checks.h"
#include "EqualsIgnoringCase.h"
#include "IniLines.h"
#include "KitLists.h"
#include "PathResolution.h"

// The findings about Morvix.ini.

namespace {
constexpr std::string_view kSectionNamesKey = "InfSectionName";

/// A key without the equals sign that its marker ends with.
std::string_view KeyOf(std::string_view marker)
{
    return marker.substr(0, marker.size() - 1);
}

ProfilePlace PlaceOfValue(const IniLine& line)
{
    return line.valuePlace.line == 0 ? line.place : line.valuePlace;
}

bool HasBlankAtEnd(std::string_view text)
{
    constexpr std::string_view kBlanks = " \t";
    return !text.empty() && (kBlanks.find(text.front()) != std::string_view::npos ||
                             kBlanks.find(text.back()) != std::string_view::npos);
}

/// The findings about one section, while they are looked for.
class SectionCheck
{
public:
    SectionCheck(const KitCheck& check, const SystemReading& on) : m_check(check), m_on(on) {}

    void Run()
    {
        CheckDirectories();
        CheckExclusions();
        CheckNames();
        CheckMarkers();
    }

private:
    void Add(int rule, const ProfilePlace& place, const std::string& what) const
    {
        m_check.Add(rule, m_check.reading.SetupIni(), place, what, m_on.system.section);
    }

    void CheckDirectories() const
    {
        const std::vector<MarkedLine> marked = m_on.LinesWith(kDirectoryMarker);
        std::size_t read = 0;
        while (read < marked.size() && read < m_on.directories.size() &&
               m_on.directories[read] == m_check.reading.Resolve(m_on, marked[read].value)) {
            CheckDirectory(marked[read++]);
        }
        if (read < marked.size()) {
            Add(102, marked[read].line->place,
                marked[read].value + " lies after the cut of " + InBrackets(m_on.system.section) + ", with " +
                    std::to_string(marked.size() - read - 1) + " more directories");
        }
    }

    void CheckDirectory(const MarkedLine& marked) const
    {
        const std::string& value = marked.value;
        const ProfilePlace place = PlaceOfValue(*marked.line);
        const std::string directory = m_check.reading.Resolve(m_on, value);
        const bool isThere = m_check.reading.Folder().InfsIn(directory) != nullptr;
        if (value.starts_with('.') && value != "." && value != ".\\" && !IsAbsolutePath(value)) {
            Add(105, place, value + " is read as " + directory);
        } else if ((value.starts_with("\\\\") || value.starts_with("//")) && !IsAbsolutePath(value)) {
            Add(106, place, value + " is read as " + directory);
        } else if (value.find('"') != std::string::npos) {
            Add(107, place, value + " has quotation marks");
        } else if (value.find(';') != std::string::npos && !isThere) {
            Add(108, place, value + " is one directory name");
        } else if (!isThere && m_check.reading.IsKnownHere(m_on, value)) {
            const bool exists = m_check.reading.Folder().Paths().Find(directory).has_value();
            Add(111, place, value + (exists ? " holds no INF file" : " does not exist"));
        }
    }

    void CheckExclusions() const
    {
        const std::vector<MarkedLine> marked = m_on.LinesWith(kExcludeMarker);
        std::size_t read = 0;
        while (read < marked.size() && read < m_on.excludes.size() && m_on.excludes[read] == marked[read].value) {
            CheckExclusion(marked[read++]);
        }
        if (read < marked.size()) {
            Add(103, marked[read].line->place,
                marked[read].value + " lies after the cut of " + InBrackets(m_on.system.section) + ", with " +
                    std::to_string(marked.size() - read - 1) + " more exclusions");
        }
    }

    void CheckExclusion(const MarkedLine& marked) const
    {
        const bool excludes = std::ranges::any_of(
            m_on.infs, [&](const MetInf& met) { return EqualsIgnoringCase(met.inf->FileName(), marked.value); });
        if (excludes) {
            return;
        }
        const bool commented = marked.value.find(';') != std::string::npos;
        Add(commented ? 108 : 113, PlaceOfValue(*marked.line),
            marked.value + (commented ? " is one file name" : " is no file of the directories of this section"));
    }

    void CheckNames() const
    {
        const auto entry = m_check.reading.SetupIniText().FindEntry(m_on.system.section, kSectionNamesKey);
        const std::string_view whole = entry && entry->value ? *entry->value : std::string_view();
        const ProfilePlace place = whole.empty() ? m_on.place : entry->valuePlace;
        if (m_on.sectionNames == std::vector<std::string>{""}) {
            Add(104, place, InBrackets(m_on.system.section) + " names no model section");
            return;
        }
        // The names are read from the end, so what is cut is at the beginning of the list.
        std::size_t read = 0;
        for (const std::string& name : m_on.sectionNames) {
            read += name.size() + 1;
        }
        const std::size_t quotes = whole.starts_with('"') && whole.ends_with('"') ? 2 : 0;
        if (read - 1 + quotes < whole.size()) {
            Add(104, place,
                std::to_string(whole.size() - quotes - (read - 1)) + " characters of the names are cut off after \"" +
                    m_on.sectionNames.front() + "\"");
        }
        for (const std::string& name : m_on.sectionNames) {
            if (name.find(';') != std::string::npos) {
                Add(108, place, "\"" + name + "\" is one name");
            } else if (HasBlankAtEnd(name)) {
                Add(110, place, "\"" + name + "\" has a blank");
            }
        }
    }

    void CheckMarkers() const
    {
        for (const IniLine& line : m_on.lines) {
            for (const std::string_view marker : {kDirectoryMarker, kExcludeMarker}) {
                const auto value = ValueAfterLast(line.text, marker);
                if (value && line.text.size() != marker.size() + value->size()) {
                    Add(109, line.place, line.text + " counts as " + std::string(marker) + std::string(*value));
                } else if (!value && EqualsIgnoringCase(line.name, KeyOf(marker))) {
                    Add(109, line.place, line.text + " is ignored");
                }
            }
        }
    }

    const KitCheck& m_check;
    const SystemReading& m_on;
};
} // namespace

void CheckSystemSection(const KitCheck& check, const SystemReading& on)
{
    if (!on.HasSection()) {
        const std::string name = InBrackets(on.system.section);
        check.Add(101, check.reading.SetupIni(), {}, name + " is missing", on.system.section, name);
        return;
    }
    SectionCheck(check, on).Run();
}

void CheckBase(const KitCheck& check)
{
    const auto entry = check.reading.SetupIniText().FindEntry("Config", "LevelsToRoot");
    if (!entry || !entry->value) {
        return;
    }
    const std::string& setupDir = check.reading.Folder().Where().setupDir;
    std::string_view digits = *entry->value;
    if (digits.size() > 1 && digits.starts_with('"') && digits.ends_with('"')) {
        digits = digits.substr(1, digits.size() - 2);
    }
    // What follows the number after a blank is harmless.
    digits = digits.substr(0, digits.find_first_of(" \t"));
    const int levels = check.reading.LevelsToRoot();
    const bool isNumber = !digits.empty() && digits.find_first_not_of("0123456789") == std::string_view::npos;
    const bool isUsed = levels == 0 || ResolveRelativePath(".", setupDir, levels, LeadByteTestOf(1252)) !=
                                           ResolveRelativePath(".", setupDir, 0, LeadByteTestOf(1252));
    const bool hasLevels = std::ranges::count(setupDir, '\\') >= levels;
    if (!isNumber || !isUsed || !hasLevels) {
        check.Add(112, check.reading.SetupIni(), entry->valuePlace,
                  std::string(*entry->value) + " gives the base " +
                      ResolveRelativePath(".", setupDir, levels, LeadByteTestOf(1252)));
    }
}
