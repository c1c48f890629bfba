#include "CopiedFiles.h"

#include <algorithm>
#include <optional>

#include "EqualsIgnoringCase.h"
#include "Trimmed.h"

namespace {
std::string_view WithoutComment(std::string_view text)
{
    return text.substr(0, text.find(';'));
}

std::vector<std::string_view> PartsOf(std::string_view list)
{
    std::vector<std::string_view> parts;
    for (;;) {
        const std::size_t comma = list.find(',');
        parts.push_back(Trimmed(list.substr(0, comma)));
        if (comma == std::string_view::npos) {
            return parts;
        }
        list.remove_prefix(comma + 1);
    }
}

/// Hands every line of every section of the name to `use`: set-up merges sections of one name.
/// @return false when there is no such section.
template <class Use>
bool ForEachLine(const Profile& inf, std::string_view sectionName, Use use)
{
    bool found = false;
    for (std::size_t section = 0; section < inf.SectionCount(); ++section) {
        if (!EqualsIgnoringCase(inf.SectionName(section), sectionName)) {
            continue;
        }
        found = true;
        for (std::size_t index = 0; index < inf.EntryCount(section); ++index) {
            use(inf.EntryAt(section, index));
        }
    }
    return found;
}

/// The parts that a system of the NT family tries after an install section's name, the first that exists wins.
std::vector<std::string> Decorations(OSCode system)
{
    const std::string_view section = RowOf(system).sectionKey;
    const std::string processor = section.ends_with("32E") ? "amd64" : section.ends_with("64") ? "ia64" : "x86";
    return {".NT" + processor, ".NT", ""};
}

/// @return the folder of the files of a list, as "DestinationDirs" gives it: a number and perhaps a folder below.
std::string DestinationOf(const Profile& inf, std::string_view listName)
{
    std::string named;
    std::string general;
    ForEachLine(inf, "DestinationDirs", [&](const Profile::Entry& entry) {
        if (!entry.value) {
            return;
        }
        if (EqualsIgnoringCase(entry.name, listName)) {
            named = WithoutComment(*entry.value);
        } else if (EqualsIgnoringCase(entry.name, "DefaultDestDir")) {
            general = WithoutComment(*entry.value);
        }
    });
    return named.empty() ? general : named;
}

bool IsDriverDirectory(std::string_view destination)
{
    const std::vector<std::string_view> parts = PartsOf(destination);
    const std::string_view below = parts.size() > 1 ? parts[1] : std::string_view();
    return (parts[0] == "12" && below.empty()) || (parts[0] == "11" && EqualsIgnoringCase(below, "drivers")) ||
           (parts[0] == "10" && EqualsIgnoringCase(below, R"(system32\drivers)"));
}

void AddList(const Profile& inf, std::string_view list, std::vector<std::string>& files)
{
    if (list.starts_with('@')) {
        if (IsDriverDirectory(DestinationOf(inf, ""))) {
            files.emplace_back(list.substr(1));
        }
        return;
    }
    if (!IsDriverDirectory(DestinationOf(inf, list))) {
        return;
    }
    ForEachLine(inf, list, [&files](const Profile::Entry& entry) {
        const std::string_view name = PartsOf(WithoutComment(entry.name)).front();
        if (!name.empty()) {
            files.emplace_back(name);
        }
    });
}
} // namespace

CopiedFiles FilesCopiedBy(const Profile& inf, std::string_view installSection, OSCode system)
{
    CopiedFiles copied;
    for (const std::string& decoration : Decorations(system)) {
        copied.known = ForEachLine(inf, std::string(installSection) + decoration, [&](const Profile::Entry& entry) {
            if (!entry.value || !EqualsIgnoringCase(entry.name, "CopyFiles")) {
                return;
            }
            for (const std::string_view list : PartsOf(WithoutComment(*entry.value))) {
                AddList(inf, list, copied.inDriverDirectory);
            }
        });
        if (copied.known) {
            break;
        }
    }
    return copied;
}

std::string InstallSectionOf(std::string_view modelValue)
{
    return std::string(PartsOf(WithoutComment(modelValue)).front());
}

bool FitsPattern(std::string_view name, std::string_view pattern)
{
    const std::size_t asterisk = pattern.find('*');
    if (asterisk == std::string_view::npos) {
        return EqualsIgnoringCase(name, pattern);
    }
    if (name.size() < asterisk || !EqualsIgnoringCase(name.substr(0, asterisk), pattern.substr(0, asterisk))) {
        return false;
    }
    for (std::size_t start = asterisk; start <= name.size(); ++start) {
        if (FitsPattern(name.substr(start), pattern.substr(asterisk + 1))) {
            return true;
        }
    }
    return false;
}
