#include <algorithm>
#include <compare>
#include <map>
#include <set>

#include "AsciiCase.h"
#include "Checks.h"
#include "CopiedFiles.h"
#include "DriverInstallRecord.h"
#include "EqualsIgnoringCase.h"
#include "FolderListing.h"
#include "HardwareIds.h"
#include "InstallResult.h"
#include "OSPredicates.h"

// The findings about the result of an installation and the files of a package.

namespace {
/// The first line that leads to each install section, by the section's name in upper case.
using InstallSections = std::map<std::string, const ModelEntry*>;

/// @return the install sections of the lines that serve a device.
InstallSections InstallSectionsOf(InfFacts& inf, const std::vector<std::string>& sectionNames)
{
    InstallSections sections;
    for (const std::string& section : sectionNames) {
        for (const ModelEntry& entry : inf.EntriesOf(section)) {
            if (entry.ServesDevice() && !entry.installSection.empty()) {
                sections.try_emplace(UpperAscii(entry.installSection), &entry);
            }
        }
    }
    return sections;
}

bool IsOf6OrLater(const PlannedSystem& system)
{
    constexpr uint32_t kVista = 6;
    return system.facts.majorVersion >= kVista;
}

/// @return the pattern of the driver file that a result rests on; empty for an INF of no driver family.
std::string PatternFor(const InfFacts& inf, OSCode system)
{
    const auto expected = ExpectedResultOf(UpperAscii(inf.Path()), system, LeadByteTestOf(1252));
    // The pattern begins with the backslash after the directory.
    return expected ? expected->filePattern.substr(1) : std::string();
}

/// What the files of a package depend on besides the INF file. Many systems have it in common.
struct PackageSystem
{
    std::string_view processor;
    std::string pattern; ///< of the driver file that a result rests on
    bool needsCatalog = false;
    auto operator<=>(const PackageSystem&) const = default;
};

PackageSystem PackageSystemOf(const PlannedSystem& system, const InfFacts& inf)
{
    const std::string_view processor = ProcessorOf(system.code);
    return {.processor = processor,
            .pattern = PatternFor(inf, system.code),
            .needsCatalog = processor == "amd64" && IsOf6OrLater(system)};
}

struct PackageFinding
{
    int rule = 0;
    ProfilePlace place;
    std::string what;
};

/// One INF file on systems that are alike for it.
class PackageCheck
{
public:
    PackageCheck(FoundFiles& files, const InfFacts& inf, const PackageSystem& system)
        : m_files(files), m_inf(inf), m_system(system)
    {
    }

    [[nodiscard]] std::vector<PackageFinding> Run(const InstallSections& sections)
    {
        if (sections.empty()) {
            return {};
        }
        if (m_inf.Path().size() >= sizeof(DriverInstallRecord::infPath)) {
            Add(506, {}, "the path on the machine has " + std::to_string(m_inf.Path().size()) + " characters");
        }
        if (m_inf.IsOfNetworkClass() && m_system.pattern.empty()) {
            Add(501, {}, std::string(m_inf.FileName()) + " begins with no family's prefix");
        }
        if (m_system.needsCatalog) {
            CheckCatalog();
        }
        for (const auto& [name, entry] : sections) {
            CheckCopies(*entry);
        }
        return std::move(m_findings);
    }

private:
    void Add(int rule, const ProfilePlace& place, const std::string& what)
    {
        m_findings.push_back({.rule = rule, .place = place, .what = what});
    }

    void CheckCatalog()
    {
        for (const std::string_view key : {"CatalogFile.NTamd64", "CatalogFile.NT", "CatalogFile"}) {
            const SetupInf::Line* const line = m_inf.Setup().FindLine("Version", key);
            if (line == nullptr) {
                continue;
            }
            if (!IsThere(line->Field(0))) {
                Add(505, line->place, std::string(line->Field(0)) + " is not there");
            }
            return;
        }
        Add(505, m_inf.PlaceOfSection("Version"), "[Version] names no CatalogFile");
    }

    void CheckCopies(const ModelEntry& entry)
    {
        const CopiedFiles copied = FilesCopiedBy(m_inf.Setup(), entry.installSection, m_system.processor);
        if (!copied.known) {
            return;
        }
        for (const CopiedFile& file : copied.files) {
            CheckSource(file);
        }
        if (!m_system.pattern.empty() && !copied.namesOtherInfs) {
            CheckResult(entry, copied);
        }
    }

    void CheckResult(const ModelEntry& entry, const CopiedFiles& copied)
    {
        const std::string& pattern = m_system.pattern;
        std::set<std::string> fitting;
        const CopiedFile* kept = nullptr;
        for (const CopiedFile& file : copied.files) {
            if (file.GoesToDriverDirectory() && FitsPattern(file.name, pattern)) {
                fitting.insert(UpperAscii(file.name));
            } else if (file.StaysInDriverStore() &&
                       EqualsIgnoringCase(std::string_view(file.name).substr(
                                              file.name.size() - std::min<std::size_t>(4, file.name.size())),
                                          ".sys")) {
                kept = &file;
            }
        }
        if (fitting.empty() && kept != nullptr) {
            Add(507, kept->place, kept->name + " goes to directory 13");
        } else if (fitting.empty()) {
            Add(502, entry.place,
                "[" + std::string(entry.installSection) + "] copies no file to system32\\drivers that fits " + pattern);
        } else if (fitting.size() > 1) {
            Add(503, entry.place, *fitting.begin() + " and " + *std::next(fitting.begin()) + " both fit " + pattern);
        }
    }

    /// A file of the package, below the INF's own folder, by either of the two names that set-up tries.
    [[nodiscard]] bool IsThere(std::string_view path) const
    {
        const std::string directory = m_inf.Path().substr(0, m_inf.Path().size() - m_inf.FileName().size());
        std::string compressed(path);
        if (!compressed.empty()) {
            compressed.back() = '_';
        }
        return path.empty() || m_files.Find(directory + std::string(path)) || m_files.Find(directory + compressed);
    }

    void CheckSource(const CopiedFile& file)
    {
        const SetupInf& setup = m_inf.Setup();
        const std::string processor(m_system.processor);
        const SetupInf::Line* source = setup.FindLine("SourceDisksFiles." + processor, file.source);
        source = source != nullptr ? source : setup.FindLine("SourceDisksFiles", file.source);
        if (source == nullptr) {
            // The platform's own layout may know the file.
            if (setup.FindLine("Version", "LayoutFile") == nullptr && !IsThere(file.source)) {
                Add(504, file.place, file.source + " is not beside the INF file");
            }
            return;
        }
        const SetupInf::Line* disk = setup.FindLine("SourceDisksNames." + processor, source->Field(0));
        disk = disk != nullptr ? disk : setup.FindLine("SourceDisksNames", source->Field(0));
        const bool isCabinet = disk != nullptr && UpperAscii(disk->Field(1)).ends_with(".CAB");
        std::string path(disk == nullptr ? std::string_view() : disk->Field(3));
        if (!source->Field(1).empty()) {
            path += "\\" + std::string(source->Field(1));
        }
        path += "\\" + file.source;
        path.erase(0, path.find_first_not_of(".\\"));
        if (!isCabinet && !IsThere(path)) {
            Add(504, file.place, path + " is not there");
        }
    }

    FoundFiles& m_files;
    const InfFacts& m_inf;
    const PackageSystem& m_system;
    std::vector<PackageFinding> m_findings;
};

/// A driver file that packages of a family copy on a system.
struct FamilyFile
{
    InfFacts* inf = nullptr;
    std::string name;
    OSCode system = osUNSUPPORTED;
    ProfilePlace place;
};

std::vector<FamilyFile> FilesOfAllSystems(const KitCheck& check)
{
    std::vector<FamilyFile> files;
    for (const std::string& system : check.systems) {
        const SystemReading& on = check.reading.On(system);
        for (const MetInf& met : on.infs) {
            if (!met.Qualifies() || PatternFor(*met.inf, on.system.code).empty()) {
                continue;
            }
            for (const auto& [name, entry] : InstallSectionsOf(*met.inf, on.sectionNames)) {
                const CopiedFiles copied =
                    FilesCopiedBy(met.inf->Setup(), entry->installSection, ProcessorOf(on.system.code));
                for (const CopiedFile& file : copied.files) {
                    if (file.GoesToDriverDirectory()) {
                        files.push_back({.inf = met.inf,
                                         .name = UpperAscii(file.name),
                                         .system = on.system.code,
                                         .place = file.place});
                    }
                }
            }
        }
    }
    return files;
}
} // namespace

namespace {
/// @return the systems on which each INF file qualifies, in their order.
std::map<InfFacts*, std::vector<const SystemReading*>> SystemsByInf(const KitCheck& check)
{
    std::map<InfFacts*, std::vector<const SystemReading*>> systems;
    for (const std::string& system : check.systems) {
        const SystemReading& on = check.reading.On(system);
        for (const MetInf& met : on.infs) {
            if (met.Qualifies()) {
                systems[met.inf].push_back(&on);
            }
        }
    }
    return systems;
}

void CheckPackage(const KitCheck& check, InfFacts& inf, const std::vector<const SystemReading*>& systems)
{
    std::map<std::vector<std::string>, InstallSections> sections;
    std::map<std::pair<const InstallSections*, PackageSystem>, std::vector<PackageFinding>> known;
    for (const SystemReading* const on : systems) {
        const auto [named, isNew] = sections.try_emplace(on->sectionNames);
        if (isNew) {
            named->second = InstallSectionsOf(inf, on->sectionNames);
        }
        const auto [found, isNewSystem] = known.try_emplace({&named->second, PackageSystemOf(on->system, inf)});
        if (isNewSystem) {
            found->second = PackageCheck(check.reading.Files(), inf, found->first.second).Run(named->second);
        }
        for (const auto& [rule, place, what] : found->second) {
            // A finding about the file as a whole is known by the file's name.
            check.Add(rule, inf.Path(), place, what, on->system.section, place.line == 0 ? inf.Path() : "");
        }
    }
}
} // namespace

void CheckPackages(const KitCheck& check)
{
    for (const auto& [inf, systems] : SystemsByInf(check)) {
        CheckPackage(check, *inf, systems);
    }
}

void CheckStaleFiles(const KitCheck& check)
{
    const std::vector<FamilyFile> files = FilesOfAllSystems(check);
    // By family, system's pattern and processor: the name that comes first in a directory. A machine can have had
    // another system of the same processor before.
    struct First
    {
        std::string name;
        const InfFacts* inf = nullptr;
    };
    std::map<std::pair<std::string, std::string>, First> firsts;
    for (const FamilyFile& wanted : files) {
        const std::string pattern = PatternFor(*wanted.inf, wanted.system);
        const std::string processor(ProcessorOf(wanted.system));
        const auto [known, isNew] = firsts.try_emplace({pattern, processor});
        if (isNew) {
            for (const FamilyFile& file : files) {
                if (ProcessorOf(file.system) == processor && FitsPattern(file.name, pattern) &&
                    (known->second.inf == nullptr || file.name < known->second.name)) {
                    known->second = {.name = file.name, .inf = file.inf};
                }
            }
        }
        const First& first = known->second;
        if (first.inf != nullptr && first.inf != wanted.inf && first.name < wanted.name &&
            FitsPattern(wanted.name, pattern)) {
            check.Add(503, wanted.inf->Path(), wanted.place,
                      first.name + " of " + check.reading.Folder().Paths().NameOf(first.inf->Path()) +
                          " comes before " + wanted.name + " and fits " + pattern,
                      std::string(RowOf(wanted.system).sectionKey));
        }
    }
}
