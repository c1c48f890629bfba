#include "DeviceSearcher.h"

#include <algorithm>
#include <array>

#include "CopiedFiles.h"
#include "InfCopies.h"
#include "InfDirectory.h"
#include "InstallResult.h"
#include "KitLists.h"

namespace {
/// Takes notes of a search.
class NoteLog final : public SilentLog
{
public:
    explicit NoteLog(SearchOutcome& outcome) : m_outcome(outcome) {}

    void Store(const std::string& infPath, const std::string& /*sourceDirectory*/) override
    {
        m_outcome.qualified.push_back(PlaceOf(infPath));
    }
    void PassBegins(int pass, std::string_view searchId) override
    {
        m_outcome.passes.push_back({.number = pass, .searchId = std::string(searchId), .judged = {}});
    }
    void SectionSearched(std::string_view /*infPath*/, std::string_view sectionName, const ModelSection& /*section*/,
                         std::optional<std::size_t> match) override
    {
        if (match) {
            m_matchedSection = sectionName;
            m_matchedLine = *match;
        }
    }
    void InfJudged(const std::string& infPath, InfVerdict verdict) override
    {
        m_outcome.passes.back().judged.push_back({.inf = PlaceOf(infPath), .verdict = verdict});
    }

    [[nodiscard]] const std::string& MatchedSection() const { return m_matchedSection; }
    /// @return the line's number among those that the platform lists for the section.
    [[nodiscard]] std::size_t MatchedLine() const { return m_matchedLine; }

private:
    uint32_t PlaceOf(const std::string& infPath)
    {
        const auto [found, isNew] = m_places.try_emplace(infPath, static_cast<uint32_t>(m_outcome.infs.size()));
        if (isNew) {
            m_outcome.infs.push_back(infPath);
        }
        return found->second;
    }

    SearchOutcome& m_outcome;
    std::unordered_map<std::string, uint32_t> m_places;
    std::string m_matchedSection;
    std::size_t m_matchedLine = 0;
};

/// Lets two listeners hear a search.
class TwoLogs final : public SearchLog
{
public:
    TwoLogs(SearchLog& first, SearchLog& second) : m_first(first), m_second(second) {}

    void SayPieces(std::span<const std::string_view> pieces) override
    {
        m_first.SayPieces(pieces);
        m_second.SayPieces(pieces);
    }
    void Store(const std::string& infPath, const std::string& sourceDirectory) override
    {
        m_first.Store(infPath, sourceDirectory);
        m_second.Store(infPath, sourceDirectory);
    }
    void Reached(SearchStep step) override
    {
        m_first.Reached(step);
        m_second.Reached(step);
    }
    void PassBegins(int pass, std::string_view searchId) override
    {
        m_first.PassBegins(pass, searchId);
        m_second.PassBegins(pass, searchId);
    }
    void SectionSearched(std::string_view infPath, std::string_view sectionName, const ModelSection& section,
                         std::optional<std::size_t> match) override
    {
        m_first.SectionSearched(infPath, sectionName, section, match);
        m_second.SectionSearched(infPath, sectionName, section, match);
    }
    void InfJudged(const std::string& infPath, InfVerdict verdict) override
    {
        m_first.InfJudged(infPath, verdict);
        m_second.InfJudged(infPath, verdict);
    }

private:
    SearchLog& m_first;
    SearchLog& m_second;
};

/// Notes what goes to the driver store.
class StoreLog final : public SilentLog
{
public:
    void Store(const std::string& infPath, const std::string& /*sourceDirectory*/) override
    {
        m_names.emplace_back(FileNameIn(infPath));
    }
    [[nodiscard]] std::vector<std::string>& Names() { return m_names; }

private:
    std::vector<std::string> m_names;
};

/// Finds the line that a search has found in the file.
std::optional<Profile::Entry> LineOf(const Profile& inf, const NoteLog& notes)
{
    const std::optional<std::size_t> section = inf.FindSection(notes.MatchedSection());
    return section ? inf.ListedEntry(*section, notes.MatchedLine()) : std::nullopt;
}

std::string ValueOf(const Profile& inf, std::string_view section, std::string_view key)
{
    const std::optional<Profile::Entry> entry = inf.FindEntry(section, key);
    return entry && entry->value ? std::string(*entry->value) : std::string();
}

std::vector<JudgedInf> FilesPassedOver(const SearchOutcome& outcome)
{
    std::vector<JudgedInf> over;
    std::vector<bool> seen(outcome.infs.size());
    for (const PassNotes& pass : outcome.passes) {
        for (const JudgedInf& judged : pass.judged) {
            if (!seen[judged.inf] && !(outcome.match && outcome.infs[judged.inf] == outcome.match->inf)) {
                over.push_back({.inf = judged.inf, .verdict = judged.verdict});
            }
            seen[judged.inf] = true;
        }
    }
    return over;
}

Report ReportOf(const ExpectedResult& expected, const Profile& inf, const std::optional<Profile::Entry>& line,
                OSCode system)
{
    Report report{.value = expected.valueName, .expects = expected.filePattern, .copiedFile = {}};
    if (!line || !line->value) {
        return report;
    }
    const CopiedFiles copied = FilesCopiedBy(inf, InstallSectionOf(*line->value), system);
    report.copiesAreKnown = copied.known;
    // The pattern begins with the backslash after the directory.
    const std::string_view pattern = std::string_view(report.expects).substr(1);
    const auto fitting = std::ranges::find_if(
        copied.inDriverDirectory, [pattern](const std::string& name) { return FitsPattern(name, pattern); });
    if (fitting != copied.inDriverDirectory.end()) {
        report.copiedFile = *fitting;
    }
    return report;
}

template <uint32_t kCodePage>
bool IsLeadByteOf(unsigned char byte)
{
    return IsLeadByteIn(kCodePage, byte);
}
} // namespace

LeadByteTest LeadByteTestOf(uint32_t codePage)
{
    switch (codePage) {
        case 932:
            return IsLeadByteOf<932>;
        case 936:
            return IsLeadByteOf<936>;
        case 949:
            return IsLeadByteOf<949>;
        case 950:
            return IsLeadByteOf<950>;
        default:
            return [](unsigned char /*byte*/) { return false; };
    }
}

KitQuestion::KitQuestion(FolderKitSource& source, SearchLog& log, const SearchTerms& terms,
                         std::vector<std::string>& stored)
    : m_search{.source = source,
               .log = log,
               .setupDir = source.Folder().Where().setupDir,
               .system = terms.system,
               .family = terms.family,
               .forceInfScan = terms.scanAll,
               .isLeadByte = LeadByteTestOf(terms.codePage),
               .storedInfs = stored,
               .matchedHardwareId = m_matchedId,
               .deviceDescription = m_description}
{
}

SearchOutcome SearchKit(FolderKitSource& source, const SearchTerms& terms, const std::string& deviceKey)
{
    std::vector<std::string> stored;
    SilentLog silent;
    return SearchKit(source, terms, deviceKey, stored, silent);
}

SearchOutcome SearchKit(FolderKitSource& source, const SearchTerms& terms, const std::string& deviceKey,
                        std::vector<std::string>& storedInfs, SearchLog& listener)
{
    SearchOutcome outcome;
    {
        SilentLog silent;
        const KitQuestion question(source, silent, terms, storedInfs);
        ReadInfLists(question.Search(), outcome.directories, outcome.excludes);
        ReadSectionNames(question.Search(), outcome.sectionNames);
    }
    NoteLog notes(outcome);
    TwoLogs both(notes, listener);
    const KitQuestion question(source, both, terms, storedInfs);
    const DeviceMatch found = SearchForDevice(question.Search(), deviceKey);
    outcome.verdict = found.verdict;
    outcome.lastPass = found.pass;
    outcome.isDmaEngine = found.isDmaEngine;
    if (found.verdict == SearchVerdict::Matched) {
        const Profile& inf = source.File(found.infPath).Text();
        const std::string& searchId = outcome.passes.back().searchId;
        const std::optional<Profile::Entry> line = LineOf(inf, notes);
        outcome.match = Match{.inf = found.infPath,
                              .recordPath = found.recordPath,
                              .line = line ? line->namePlace.line : 0,
                              .column = line ? line->namePlace.column : 0,
                              .pass = found.pass,
                              .searchId = searchId,
                              .modelSection = notes.MatchedSection(),
                              .description = question.Description(),
                              .driverVersion = ValueOf(inf, "Version", "DriverVer")};
        if (const auto expected = ExpectedResultOf(found.recordPath, terms.system, LeadByteTestOf(terms.codePage))) {
            outcome.report = ReportOf(*expected, inf, line, terms.system);
        }
    }
    outcome.passedOver = FilesPassedOver(outcome);
    const MachinePaths& paths = source.Folder().Paths();
    outcome.names.reserve(outcome.infs.size());
    for (const std::string& inf : outcome.infs) {
        outcome.names.push_back(paths.NameOf(inf));
    }
    return outcome;
}

std::vector<std::string> StoreQualified(FolderKitSource& source, const SearchTerms& terms, const SearchOutcome& search,
                                        std::vector<std::string>& storedInfs)
{
    StoreLog log;
    const KitQuestion question(source, log, terms, storedInfs);
    for (const uint32_t inf : search.qualified) {
        const std::string& path = search.infs[inf];
        const std::string name(FileNameIn(path));
        StoreInfOnce(question.Search(), name, path, path.substr(0, path.size() - name.size()));
    }
    return std::move(log.Names());
}
