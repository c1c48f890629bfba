#include "KitReading.h"

#include <algorithm>
#include <utility>

#include "InfDirectory.h"
#include "IniLines.h"
#include "KitLists.h"
#include "NameList.h"
#include "PathResolution.h"

namespace {
constexpr std::size_t kFirstSectionBytes = 4096;
/// An ID that no device has: files are judged by what does not depend on a device.
const std::string kNoDevice = "-";

/// Notices when a file goes to the driver store.
class StoreWatch final : public SilentLog
{
public:
    void Store(const std::string& /*infPath*/, const std::string& /*sourceDirectory*/) override { m_stored = true; }
    /// @return whether one did since this was asked before.
    bool Take() { return std::exchange(m_stored, false); }

private:
    bool m_stored = false;
};

/// What the installer would see of a section without the limits of its buffers.
std::vector<IniLine> WholeSection(const Profile& ini, const std::string& section)
{
    std::vector<IniLine> lines;
    const std::optional<std::size_t> found = ini.FindSection(section);
    if (!found) {
        return lines;
    }
    std::vector<char> buffer(kFirstSectionBytes);
    while (ini.ReadSection(section.c_str(), buffer) == buffer.size() - 2) {
        buffer.assign(buffer.size() * 2, '\0');
    }
    const std::vector<std::string_view> texts = LinesOf(buffer);
    for (std::size_t index = 0; index < ini.EntryCount(*found) && lines.size() < texts.size(); ++index) {
        if (!ini.IsListed(*found, index)) {
            continue;
        }
        const Profile::Entry entry = ini.EntryAt(*found, index);
        lines.push_back({.text = std::string(texts[lines.size()]),
                         .name = std::string(entry.name),
                         .place = entry.namePlace,
                         .valuePlace = entry.valuePlace});
    }
    return lines;
}
} // namespace

std::vector<MarkedLine> SystemReading::LinesWith(std::string_view marker) const
{
    std::vector<MarkedLine> marked;
    for (const IniLine& line : lines) {
        if (const auto value = ValueAfterLast(line.text, marker)) {
            marked.push_back({.line = &line, .value = std::string(*value)});
        }
    }
    return marked;
}

bool SystemReading::Names(std::string_view section) const
{
    return ContainsName(sectionNames, section);
}

KitReading::KitReading(KitFolder& folder, uint32_t codePage)
    : m_folder(folder),
      m_codePage(codePage),
      m_source(folder, codePage),
      m_files(folder.Paths()),
      m_setupIni(SetupIniIn(folder.Where().setupDir))
{
}

SearchTerms KitReading::TermsOf(const PlannedSystem& system) const
{
    return {.system = system.code, .family = system.family, .codePage = m_codePage, .scanAll = false};
}

SystemReading& KitReading::ReadingOf(const std::string& section)
{
    const auto [found, isNew] = m_systems.try_emplace(section);
    SystemReading& reading = found->second;
    if (isNew) {
        std::string problem;
        reading.system = ChooseSystem({}, {.section = section, .family = {}}, problem).value_or(PlannedSystem{});
        ReadIni(reading);
    }
    return reading;
}

const SystemReading& KitReading::IniOn(const std::string& section)
{
    return ReadingOf(section);
}

const SystemReading& KitReading::On(const std::string& section)
{
    SystemReading& reading = ReadingOf(section);
    if (!reading.hasMetInfs) {
        reading.hasMetInfs = true;
        MeetInfs(reading);
    }
    return reading;
}

InfFacts& KitReading::Inf(const std::string& path)
{
    std::unique_ptr<InfFacts>& inf = m_infs[path];
    if (!inf) {
        inf = std::make_unique<InfFacts>(path, m_source, m_ids);
    }
    return *inf;
}

void KitReading::ReadIni(SystemReading& reading)
{
    const Profile& ini = SetupIniText();
    const std::string& section = reading.system.section;
    if (const auto found = ini.FindSection(section)) {
        reading.place = ini.SectionPlace(*found);
    }
    reading.lines = WholeSection(ini, section);
    SilentLog silent;
    std::vector<std::string> stored;
    const KitQuestion question(m_source, silent, TermsOf(reading.system), stored);
    ReadInfLists(question.Search(), reading.directories, reading.excludes);
    ReadSectionNames(question.Search(), reading.sectionNames);
}

void KitReading::MeetInfs(SystemReading& reading)
{
    StoreWatch watch;
    std::vector<std::string> stored;
    const KitQuestion question(m_source, watch, TermsOf(reading.system), stored);
    const InfSearchRules rules = ReadSearchRules(question.Search(), reading.excludes);
    std::vector<std::string> seen;
    for (std::size_t number = 0; number < reading.directories.size(); ++number) {
        const std::string& directory = reading.directories[number];
        const std::vector<InfEntry>* const entries = m_folder.InfsIn(directory);
        if (entries == nullptr || ContainsName(seen, directory)) {
            continue;
        }
        seen.push_back(directory);
        for (const InfEntry& entry : *entries) {
            const std::string path = directory + entry.name;
            if (!m_source.File(path).Mark().opened) {
                continue;
            }
            const InfVerdict verdict = JudgeInf(question.Search(), kNoDevice, entry.name, directory, rules);
            const bool qualifies = verdict == InfVerdict::NotListed || verdict == InfVerdict::ListsDevice;
            reading.infs.push_back({.inf = &Inf(path),
                                    .directory = number,
                                    .passedOver = qualifies ? std::nullopt : std::optional(verdict),
                                    .isStored = watch.Take()});
        }
    }
}

std::string KitReading::Resolve(const SystemReading& reading, const std::string& value)
{
    SilentLog silent;
    std::vector<std::string> stored;
    const KitQuestion question(m_source, silent, TermsOf(reading.system), stored);
    constexpr bool kWithTrailingSlash = true;
    return ResolveDirectory(question.Search(), value, kWithTrailingSlash);
}

int KitReading::LevelsToRoot()
{
    SilentLog silent;
    std::vector<std::string> stored;
    const KitQuestion question(m_source, silent, {}, stored);
    return ReadLevelsToRoot(question.Search());
}

bool KitReading::IsKnownHere(const SystemReading& reading, const std::string& value)
{
    const std::string directory = Resolve(reading, value);
    const std::string base = Resolve(reading, ".");
    if (LiesIn(directory, base)) {
        return true;
    }
    return std::ranges::any_of(m_folder.Where().maps,
                               [&](const FolderMap& map) { return LiesIn(directory, map.onMachine); });
}
