#include "InfFacts.h"

#include <algorithm>
#include <span>

#include "AsciiCase.h"
#include "EqualsIgnoringCase.h"
#include "HardwareIds.h"
#include "InfModelLine.h"

namespace {
/// @return the entry as the installer reads it.
std::string TextAsRead(const Profile::Entry& entry)
{
    return std::string(entry.name) + (entry.value ? "=" + std::string(*entry.value) : std::string());
}

/// @param ids  Of the line.
void AddSetupLine(const SetupInf::Line& line, std::span<const KnownId* const> ids, ModelEntry& entry,
                  std::vector<PlacedId>& following)
{
    entry.isSetupLine = true;
    entry.installSection = line.Field(0);
    entry.hardwareId = line.Field(1);
    if (ids.empty()) {
        return;
    }
    entry.setupId = ids.front();
    for (const KnownId* const id : ids.subspan(1)) {
        if (entry.isRead && id->servesDevice) {
            following.push_back({.place = entry.place, .id = id});
        }
    }
}
} // namespace

InfFacts::InfFacts(std::string path, FolderKitSource& source, KnownIds& ids)
    : m_path(std::move(path)), m_source(source), m_ids(ids), m_text(source.File(m_path).Text()), m_setup(m_text)
{
    const auto version = m_text.FindEntry("Version", "DriverVer");
    if (version && version->value) {
        m_version = ParseDriverVersion(*version->value);
    }
}

bool InfFacts::IsOfNetworkClass() const
{
    return EqualsIgnoringCase(m_setup.ValueOf("Version", "Class"), "Net");
}

const ModelLines& InfFacts::LinesOf(const std::string& section)
{
    const auto known = m_modelLines.find(section);
    return known != m_modelLines.end() ? known->second
                                       : m_modelLines.try_emplace(section, ReadLines(section)).first->second;
}

ModelLines InfFacts::ReadLines(const std::string& section) const
{
    ModelLines lines;
    if (const std::optional<std::size_t> found = m_text.FindSection(section)) {
        lines.entries = ReadEntries(*found, section.c_str());
        AddSetup(*found, lines);
    }
    return lines;
}

/// @return the entries as the installer reads them.
std::vector<ModelEntry> InfFacts::ReadEntries(std::size_t section, const char* name) const
{
    std::vector<ModelEntry> entries;
    entries.reserve(m_text.EntryCount(section));
    const std::shared_ptr<const ModelSection> read = m_source.ReadModelSection(name, m_path);
    const KnownId* const none = &m_ids.Of({});
    for (std::size_t index = 0; index < m_text.EntryCount(section); ++index) {
        // The installer's reading leaves out the same lines.
        if (!m_text.IsListed(section, index)) {
            continue;
        }
        const Profile::Entry entry = m_text.EntryAt(section, index);
        const std::size_t number = entries.size();
        ModelEntry& model = entries.emplace_back();
        model.place = entry.namePlace;
        model.setupId = none;
        model.isLong = entry.name.size() + (entry.value ? entry.value->size() + 1 : 0) > kModelLineChars;
        model.isRead = number < read->LineCount();
        if (model.isRead && read->HasHardwareId(number)) {
            model.found = &m_ids.Of(UpperAscii(read->HardwareId(number)));
        }
    }
    if (const std::size_t count = read->LineCount(); count != 0 && count < entries.size()) {
        // The last line of a section that is cut is there in part.
        ModelEntry& last = entries[count - 1];
        const std::string text = TextAsRead(*m_text.ListedEntry(section, count - 1));
        const auto whole = ParseModelLine(text).hardwareId;
        last.isRead = last.found == (whole ? &m_ids.Of(UpperAscii(*whole)) : nullptr);
    }
    return entries;
}

/// Adds what set-up makes of the lines.
void InfFacts::AddSetup(std::size_t section, ModelLines& lines) const
{
    auto entry = lines.entries.begin();
    for (const SetupInf::Line& line : m_setup.ReadLinesOf(m_text.SectionName(section))) {
        const auto begun = line.section != section
                               ? lines.entries.end()
                               : std::ranges::find(entry, lines.entries.end(), line.place, &ModelEntry::place);
        // Nearly always the installer finds the same ID.
        const KnownId* const found = begun == lines.entries.end() ? nullptr : begun->found;
        for (std::size_t field = 1; field < line.fields.size(); ++field) {
            const std::string id = ComparedId(line.fields[field]);
            lines.setupIds.push_back(found != nullptr && found->text == id ? found : &m_ids.Of(id));
        }
        const auto ids = std::span(lines.setupIds).last(std::max<std::size_t>(line.fields.size(), 1) - 1);
        lines.listsOurs = lines.listsOurs || std::ranges::any_of(ids, &KnownId::isOfAcceptedVendor) ||
                          IsOfAcceptedVendor(ComparedId(line.Field(0)));
        if (begun != lines.entries.end()) {
            AddSetupLine(line, ids, *begun, lines.following);
            entry = std::next(begun);
        } else if (line.section != section && !lines.repeated && !ids.empty() && ids.front()->isOfAcceptedVendor &&
                   std::ranges::find(lines.entries, ids.front(), &ModelEntry::found) == lines.entries.end()) {
            lines.repeated = {.place = m_text.SectionPlace(line.section), .id = ids.front()};
        }
    }
    std::ranges::sort(lines.setupIds);
    lines.setupIds.erase(std::unique(lines.setupIds.begin(), lines.setupIds.end()), lines.setupIds.end());
    lines.setupIds.shrink_to_fit();
}

const std::vector<ModelsOfMaker>& InfFacts::Makers()
{
    if (!m_makers) {
        m_makers = MakersOf(m_setup);
    }
    return *m_makers;
}

ProfilePlace InfFacts::PlaceOfSection(std::string_view section) const
{
    const std::optional<std::size_t> found = m_text.FindSection(section);
    return found ? m_text.SectionPlace(*found) : ProfilePlace{.line = 1, .column = 1, .byteColumn = 1};
}

ProfilePlace InfFacts::PlaceOfKey(std::string_view section, std::string_view key) const
{
    const auto entry = m_text.FindEntry(section, key);
    return entry ? entry->namePlace : PlaceOfSection(section);
}

const std::vector<std::string>& InfFacts::ModelSections()
{
    if (!m_modelSections) {
        m_modelSections.emplace();
        for (const ModelsOfMaker& maker : Makers()) {
            for (const std::string& section : maker.SectionNames()) {
                if (m_setup.HasSection(section) &&
                    std::ranges::find(*m_modelSections, section) == m_modelSections->end()) {
                    m_modelSections->push_back(section);
                }
            }
        }
    }
    return *m_modelSections;
}

bool InfFacts::IsMeantForOurs(const std::vector<std::string>& others)
{
    const auto listsOurs = [this](const std::string& section) { return LinesOf(section).listsOurs; };
    return std::ranges::any_of(ModelSections(), listsOurs) || std::ranges::any_of(others, listsOurs);
}
