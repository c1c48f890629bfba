#include "InfFacts.h"

#include <algorithm>

#include "EqualsIgnoringCase.h"
#include "HardwareIds.h"
#include "InfModelLine.h"
#include "SetupModels.h"

InfFacts::InfFacts(std::string path, FolderKitSource& source)
    : m_path(std::move(path)), m_source(source), m_text(source.File(m_path).Text()), m_setup(m_text)
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

const std::vector<ModelEntry>& InfFacts::EntriesOf(const std::string& section)
{
    const auto known = m_entries.find(section);
    return known != m_entries.end() ? known->second
                                    : m_entries.try_emplace(section, ReadEntries(section)).first->second;
}

std::vector<ModelEntry> InfFacts::ReadEntries(const std::string& section) const
{
    std::vector<ModelEntry> entries;
    const std::optional<std::size_t> found = m_text.FindSection(section);
    if (!found) {
        return entries;
    }
    const std::shared_ptr<const ModelSection> read = m_source.ReadModelSection(section.c_str(), m_path);
    const std::vector<SetupInf::Line>& lines = m_setup.LinesOf(m_text.SectionName(*found));
    auto line = lines.begin();
    for (std::size_t index = 0; index < m_text.EntryCount(*found); ++index) {
        const Profile::Entry entry = m_text.EntryAt(*found, index);
        while (line != lines.end() && line->section == *found && line->entry < index) {
            ++line;
        }
        // The installer's reading leaves out the same lines.
        if (entry.name.starts_with(';') || (entry.name.empty() && !entry.value)) {
            continue;
        }
        ModelEntry& model = entries.emplace_back();
        const std::size_t number = entries.size() - 1;
        model.place = entry.namePlace;
        model.text = std::string(entry.name) + (entry.value ? "=" + std::string(*entry.value) : std::string());
        model.isRead = number < read->LineCount();
        if (model.isRead && read->HasHardwareId(number)) {
            model.found = UpperAscii(read->HardwareId(number));
            model.servesDevice = IsOfAcceptedVendor(*model.found) && IsSearched(*model.found);
        }
        if (line != lines.end() && line->section == *found && line->entry == index) {
            model.line = &*line;
            model.setupId = ComparedId(model.HardwareId());
        }
    }
    if (const std::size_t count = read->LineCount(); count != 0 && count < entries.size()) {
        // The last line of a section that is cut is there in part.
        ModelEntry& last = entries[count - 1];
        const auto whole = ParseModelLine(last.text).hardwareId;
        last.isRead = last.found == (whole ? std::optional(UpperAscii(*whole)) : std::nullopt);
    }
    return entries;
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
        for (const ModelsOfMaker& maker : MakersOf(m_setup)) {
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
    const auto listsOurs = [this](const std::string& section) {
        return std::ranges::any_of(m_setup.LinesOf(section), [](const SetupInf::Line& line) {
            return std::ranges::any_of(line.fields,
                                       [](const std::string& field) { return IsOfAcceptedVendor(ComparedId(field)); });
        });
    };
    if (!m_isMeantForOurs) {
        m_isMeantForOurs = std::ranges::any_of(ModelSections(), listsOurs);
    }
    return *m_isMeantForOurs || std::ranges::any_of(others, listsOurs);
}
