#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <unordered_set>

#include "AsciiCase.h"
#include "Checks.h"
#include "HardwareIds.h"
#include "InfModelLine.h"
#include "Printable.h"

// The findings about the lines of model sections.

namespace {
/// What is wrong with the first ID of a line, if anything is.
struct LineFinding
{
    int rule = 0;
    std::string what;
};

LineFinding JudgeFirstId(const ModelEntry& entry)
{
    if (entry.ServesDevice() && entry.found == entry.setupId) {
        return {};
    }
    const std::string& id = entry.setupId->text;
    const std::string hardwareId(entry.hardwareId);
    if (UpperAscii(hardwareId).starts_with("VEN_") && hardwareId.find('\\') == std::string::npos) {
        return {.rule = 302, .what = hardwareId + " has no bus"};
    }
    if (id.empty() || NamesClassOnly(hardwareId)) {
        return {};
    }
    if (!entry.setupId->isOfAcceptedVendor) {
        return {.rule = id.starts_with("VEN_") ? 305 : 0, .what = id + " is of another vendor"};
    }
    if (entry.isLong && entry.found != entry.setupId) {
        return {.rule = 207, .what = id + " begins or ends after what is read of a line"};
    }
    if (entry.found != entry.setupId) {
        return {
            .rule = 304,
            .what = id + (entry.found != nullptr ? " is compared as " + entry.found->text : " is not compared at all")};
    }
    if (!entry.setupId->servesDevice) {
        return {.rule = 303, .what = id + " is searched in no pass"};
    }
    return {};
}

/// What is wrong with a model section on every system.
class SectionJudge
{
public:
    struct Finding
    {
        ProfilePlace place;
        LineFinding finding;
    };

    SectionJudge(const ModelLines& lines, const std::string& section) : m_lines(lines), m_section(section) {}

    [[nodiscard]] std::vector<Finding> Judge()
    {
        if (m_lines.repeated) {
            Add(m_lines.repeated->place,
                {.rule = 206,
                 .what = "a second section " + InBrackets(m_section) + " lists " + m_lines.repeated->id->text});
        }
        for (const ModelEntry& entry : m_lines.entries) {
            if (entry.isSetupLine && entry.isRead) {
                JudgeLine(entry);
            } else if (entry.isSetupLine) {
                JudgeUnreadLine(entry);
            }
        }
        return std::move(m_findings);
    }

private:
    void Add(const ProfilePlace& place, LineFinding finding)
    {
        m_findings.push_back({.place = place, .finding = std::move(finding)});
    }

    void JudgeUnreadLine(const ModelEntry& entry)
    {
        if (!m_saidCut && entry.setupId->isOfAcceptedVendor) {
            Add(entry.place,
                {.rule = 207, .what = entry.setupId->text + " lies after the cut of " + InBrackets(m_section)});
            m_saidCut = true;
        }
    }

    void JudgeLine(const ModelEntry& entry)
    {
        LineFinding finding = JudgeFirstId(entry);
        constexpr std::size_t kVendorChars = 8;
        const bool isSaid =
            finding.rule == 305 && !m_otherVendors.insert(entry.setupId->text.substr(0, kVendorChars)).second;
        if (finding.rule != 0 && !isSaid) {
            Add(entry.place, std::move(finding));
        }
    }

    const ModelLines& m_lines;
    const std::string& m_section;
    std::vector<Finding> m_findings;
    std::set<std::string> m_otherVendors;
    bool m_saidCut = false;
};

/// All IDs that the installer compares on a system.
class FoundIds
{
public:
    explicit FoundIds(const SystemReading& on) : m_on(on) {}

    [[nodiscard]] bool Has(const KnownId* id)
    {
        // Few kits have a line that asks for them.
        if (!m_ids) {
            m_ids.emplace();
            for (const MetInf& met : m_on.infs) {
                for (const std::string& section : m_on.sectionNames) {
                    AddFrom(met, section);
                }
            }
        }
        return m_ids->contains(id);
    }

private:
    void AddFrom(const MetInf& met, const std::string& section)
    {
        if (met.Qualifies()) {
            for (const ModelEntry& entry : met.inf->EntriesOf(section)) {
                m_ids->insert(entry.found);
            }
        }
    }

    const SystemReading& m_on;
    std::optional<std::unordered_set<const KnownId*>> m_ids;
};
} // namespace

void CheckModelSections(const KitCheck& check)
{
    std::map<const ModelLines*, std::vector<SectionJudge::Finding>> known;
    for (const std::string& system : check.systems) {
        const SystemReading& on = check.reading.On(system);
        FoundIds found(on);
        for (const MetInf& met : on.infs) {
            if (!met.Qualifies()) {
                continue;
            }
            for (const std::string& section : on.sectionNames) {
                const ModelLines& lines = met.inf->LinesOf(section);
                const auto [judged, isNew] = known.try_emplace(&lines);
                if (isNew) {
                    judged->second = SectionJudge(lines, section).Judge();
                }
                for (const auto& [place, finding] : judged->second) {
                    check.Add(finding.rule, met.inf->Path(), place, finding.what, system);
                }
                for (const auto& [place, id] : lines.following) {
                    if (!found.Has(id)) {
                        check.Add(301, met.inf->Path(), place, id->text + " comes after another ID", system);
                    }
                }
            }
        }
    }
}
