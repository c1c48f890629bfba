#include <algorithm>
#include <filesystem>
#include <optional>
#include <vector>

#include "EqualsIgnoringCase.h"
#include "Explain.h"
#include "InfDirectory.h"
#include "Printable.h"
#include "SearchIds.h"

namespace {
std::string WithSlashes(std::string_view path)
{
    std::string slashed(path);
    std::ranges::replace(slashed, '\\', '/');
    return slashed;
}

/// @return true when `part` is the path's end, beginning with a name.
bool EndsWithPath(std::string_view path, std::string_view part)
{
    if (part.empty() || path.size() < part.size() ||
        !EqualsIgnoringCase(path.substr(path.size() - part.size()), part)) {
        return false;
    }
    return path.size() == part.size() || path[path.size() - part.size() - 1] == '/';
}

bool Contains(std::string_view text, std::string_view part)
{
    // The ranges' own search does not compile with the fuzz targets' compiler.
    return part.empty() || std::search(text.begin(), text.end(), part.begin(), part.end(), [](char a, char b) {
                               return EqualsIgnoringCase({&a, 1}, {&b, 1});
                           }) != text.end();
}

/// The INF files of the searched folders, as full paths on the machine, in the order of the search.
std::vector<std::string> SearchedFiles(FolderKitSource& source, const SearchOutcome& search)
{
    std::vector<std::string> files;
    for (const std::string& directory : search.directories) {
        if (const auto listing = source.List(directory)) {
            while (const InfEntry* const entry = listing->Next()) {
                files.push_back(directory + entry->name);
            }
        }
    }
    return files;
}

/// @return the file of that name when it is in the kit but in none of the searched folders.
std::optional<std::string> FindElsewhere(const KitFolder& kit, const std::string& asked)
{
    std::error_code error;
    const std::filesystem::path& root = kit.Where().folder;
    std::filesystem::recursive_directory_iterator entry(
        root, std::filesystem::directory_options::skip_permission_denied, error);
    while (!error && entry != std::filesystem::recursive_directory_iterator()) {
        const std::string name = entry->path().lexically_relative(root).generic_string();
        if (EndsWithPath(name, asked)) {
            return name;
        }
        entry.increment(error);
    }
    return std::nullopt;
}

/// @return the path as the kit has it, when it was named from here.
std::string PathInKit(const KitFolder& kit, std::string_view inf)
{
    std::string slashed = WithSlashes(inf);
    std::error_code error;
    const std::filesystem::path here = std::filesystem::canonical(slashed, error);
    if (!error) {
        const std::filesystem::path root = std::filesystem::canonical(kit.Where().folder, error);
        std::string inside = here.lexically_relative(root).generic_string();
        if (!error && !inside.empty() && !inside.starts_with("..")) {
            return inside;
        }
    }
    return slashed;
}

/// Why a file of a searched folder did not win. The installer's own rules judge the file alone, pass by pass.
class FileQuestion
{
public:
    FileQuestion(const MachinePlan& plan, const DevicePlan& device, FolderKitSource& source, const SearchTerms& terms)
        : m_plan(plan),
          m_device(device),
          m_source(source),
          m_question(source, m_silent, terms, m_stored),
          m_rules(ReadSearchRules(m_question.Search(), device.search->excludes))
    {
    }

    [[nodiscard]] std::string Answer(const std::string& path)
    {
        const SearchOutcome& search = *m_device.search;
        if (search.match && search.match->inf == path) {
            return Name(path) + " wins: it lists the device in pass " + std::to_string(search.match->pass) + ".";
        }
        for (int pass = kFirstSearchPass; pass <= kLastSearchPass; ++pass) {
            const SearchPass plan = PlanPass(m_device.key, pass);
            if (plan.verdict == PassVerdict::Fault) {
                break;
            }
            if (plan.verdict != PassVerdict::OwnId) {
                continue;
            }
            const InfVerdict verdict = Judge(path, plan.searchId);
            if (verdict == InfVerdict::ListsDevice) {
                return Listed(path, pass, plan.searchId);
            }
            if (verdict != InfVerdict::NotListed) {
                return Unqualified(path, verdict);
            }
        }
        return NotListed(path);
    }

private:
    [[nodiscard]] std::string Name(const std::string& path) const
    {
        return Printable(m_source.Folder().Paths().NameOf(path));
    }

    InfVerdict Judge(const std::string& path, const std::string& searchId)
    {
        const std::string name(FileNameIn(path));
        return JudgeInf(m_question.Search(), searchId, name, path.substr(0, path.size() - name.size()), m_rules);
    }

    [[nodiscard]] std::string Listed(const std::string& path, int pass, const std::string& searchId) const
    {
        const SearchOutcome& search = *m_device.search;
        const std::string lists = Name(path) + " lists the device as " + Printable(searchId) + ", which pass " +
                                  std::to_string(pass) + " looks for; ";
        if (!search.match) {
            return lists + "the run ends with a fault before.";
        }
        const Match& match = *search.match;
        if (match.pass < pass) {
            return lists + Name(match.inf) + " had won in pass " + std::to_string(match.pass) +
                   ": a longer ID wins over a shorter one, whatever the drivers' versions are.";
        }
        return lists + "so does " + Name(match.inf) +
               ", which is searched before it: the first in the order of "
               "folders and names wins, whatever the drivers' versions are.";
    }

    [[nodiscard]] std::string Unqualified(const std::string& path, InfVerdict verdict) const
    {
        switch (verdict) {
            case InfVerdict::Excluded:
                return Name(path) + " is left out: Morvix.ini, section [" + Printable(m_plan.system.section) +
                       "], has it in an InfExclude line; --scan-all (option /n) searches it all the same.";
            case InfVerdict::OtherSignature:
                return Name(path) + " does not count: its Signature is not \"" + Printable(m_rules.expectedSignature) +
                       "\", which the family \"" + Printable(m_plan.system.family) + "\" needs.";
            case InfVerdict::OtherBrand:
                return Name(path) +
                       " does not count: no line of its [Manufacturer] section has one of the brand names.";
            default:
                return Name(path) + " does not count: " + std::string(InWords(verdict)) + ".";
        }
    }

    /// Looks for the device elsewhere in the file: that is what its author has to change.
    [[nodiscard]] std::string NotListed(const std::string& path) const
    {
        std::vector<std::string> sections;
        for (const std::string& name : m_rules.sectionNames) {
            sections.push_back("[" + Printable(name) + "]");
        }
        const std::string answer =
            Name(path) + " qualifies and does not list the device as the first ID of a line of " + Joined(sections);
        const Profile& inf = m_source.File(path).Text();
        const std::string vendorAndDevice = m_device.key.substr(0, m_device.key.find("&SUBSYS"));
        for (const std::string& name : m_rules.sectionNames) {
            if (const std::optional<std::string> line = NearestLine(path, name, vendorAndDevice)) {
                return answer + "; " + *line;
            }
        }
        for (std::size_t section = 0; section < inf.SectionCount(); ++section) {
            for (std::size_t index = 0; index < inf.EntryCount(section); ++index) {
                const Profile::Entry entry = inf.EntryAt(section, index);
                if (entry.value && Contains(*entry.value, vendorAndDevice)) {
                    return answer + "; line " + std::to_string(entry.namePlace.line) + ", in section [" +
                           Printable(inf.SectionName(section)) + "], has " + Printable(vendorAndDevice) +
                           " in another place or another form.";
                }
            }
        }
        return answer + ", nor " + Printable(vendorAndDevice) + " anywhere else.";
    }

    /// @return why the first line of a searched section that names the device does not list it; no value when no line
    ///         names it.
    [[nodiscard]] std::optional<std::string> NearestLine(const std::string& path, const std::string& sectionName,
                                                         const std::string& vendorAndDevice) const
    {
        const Profile& inf = m_source.File(path).Text();
        const std::optional<std::size_t> place = inf.FindSection(sectionName);
        if (!place) {
            return std::nullopt;
        }
        const std::shared_ptr<const ModelSection> section = m_source.ReadModelSection(sectionName.c_str(), path);
        for (std::size_t line = 0; line < section->LineCount(); ++line) {
            const std::optional<Profile::Entry> entry = inf.ListedEntry(*place, line);
            if (!entry || !entry->value || !Contains(*entry->value, vendorAndDevice)) {
                continue;
            }
            const std::string id(section->HardwareId(line));
            std::string answer = "line " + std::to_string(entry->namePlace.line) + ", in section [" +
                                 Printable(inf.SectionName(*place)) + "], ";
            if (section->VerdictOn(line, m_device.key) == LineVerdict::NoHardwareId) {
                answer += "names it without a bus prefix such as PCI\\, and so as no hardware ID";
            } else if (Contains(id, vendorAndDevice)) {
                answer += "lists " + Printable(id) + ", which no pass looks for";
            } else {
                answer +=
                    "lists " + Printable(id) + " first and names it only as a compatible ID, which does not count";
            }
            return answer + ".";
        }
        return std::nullopt;
    }

    const MachinePlan& m_plan;
    const DevicePlan& m_device;
    FolderKitSource& m_source;
    SilentLog m_silent;
    std::vector<std::string> m_stored;
    KitQuestion m_question;
    InfSearchRules m_rules;
};
} // namespace

std::string WhyNot(const MachinePlan& plan, const DevicePlan& device, std::string_view inf, FolderKitSource& source,
                   const SearchTerms& terms, std::string& problem)
{
    const std::string asked = PathInKit(source.Folder(), inf);
    const MachinePaths& paths = source.Folder().Paths();
    std::vector<std::string> fitting;
    for (const std::string& path : SearchedFiles(source, *device.search)) {
        if (EndsWithPath(WithSlashes(paths.NameOf(path)), asked)) {
            fitting.push_back(path);
        }
    }
    if (fitting.empty()) {
        const std::optional<std::string> elsewhere = FindElsewhere(source.Folder(), asked);
        if (!elsewhere) {
            problem =
                Printable(inf) + ": no such file in the kit; name it by its path in the kit, or by its name alone";
            return {};
        }
        return Printable(*elsewhere) + " is in no folder that Morvix.ini, section [" + Printable(plan.system.section) +
               "], names, or a search for \"*.inf\" does not find it.";
    }
    if (fitting.size() > 1) {
        std::vector<std::string> names;
        names.reserve(fitting.size());
        for (const std::string& path : fitting) {
            names.push_back(Printable(paths.NameOf(path)));
        }
        problem = Printable(inf) + ": more than one file fits; name one of: " + Joined(names);
        return {};
    }
    return FileQuestion(plan, device, source, terms).Answer(fitting.front());
}
