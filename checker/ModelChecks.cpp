#include <algorithm>
#include <optional>
#include <set>
#include <unordered_set>

#include "Checks.h"
#include "EqualsIgnoringCase.h"
#include "HardwareIds.h"
#include "InfModelLine.h"
#include "Printable.h"

// The findings about the lines of model sections.

namespace {
/// Later sections of the name, which set-up merges into the first.
void CheckRepeatedSection(const KitCheck& check, InfFacts& inf, const std::string& section, const std::string& system)
{
    const std::vector<ModelEntry>& first = inf.EntriesOf(section);
    const auto isListed = [&first](const std::string& id) {
        return std::ranges::any_of(first, [&id](const ModelEntry& entry) { return entry.found == id; });
    };
    const std::optional<std::size_t> found = inf.Text().FindSection(section);
    for (const SetupInf::Line& line : inf.Setup().LinesOf(section)) {
        if (line.section == found) {
            continue;
        }
        const std::string id = ComparedId(line.Field(1));
        if (IsOfAcceptedVendor(id) && !isListed(id)) {
            check.Add(206, inf.Path(), inf.Text().SectionPlace(line.section),
                      "a second section " + InBrackets(section) + " lists " + id, system);
            return;
        }
    }
}

/// What is wrong with the first ID of a line, if anything is.
struct LineFinding
{
    int rule = 0;
    std::string what;
};

LineFinding JudgeFirstId(const ModelEntry& entry)
{
    const std::string& id = entry.setupId;
    if (entry.servesDevice && entry.found == id) {
        return {};
    }
    const std::string hardwareId(entry.HardwareId());
    if (UpperAscii(hardwareId).starts_with("VEN_") && hardwareId.find('\\') == std::string::npos) {
        return {.rule = 302, .what = hardwareId + " has no bus"};
    }
    if (id.empty() || NamesClassOnly(hardwareId)) {
        return {};
    }
    if (!IsOfAcceptedVendor(id)) {
        return {.rule = id.starts_with("VEN_") ? 305 : 0, .what = id + " is of another vendor"};
    }
    if (entry.text.size() > kModelLineChars && entry.found != id) {
        return {.rule = 207, .what = id + " begins or ends after what is read of a line"};
    }
    if (entry.found != id) {
        return {.rule = 304,
                .what = id + (entry.found ? " is compared as " + *entry.found : " is not compared at all")};
    }
    if (!IsSearched(id)) {
        return {.rule = 303, .what = id + " is searched in no pass"};
    }
    return {};
}

class LineChecks
{
public:
    LineChecks(const KitCheck& check, const SystemReading& on) : m_check(check), m_on(on) {}

    void Run()
    {
        for (const MetInf& met : m_on.infs) {
            for (const std::string& section : m_on.sectionNames) {
                if (met.Qualifies()) {
                    CheckRepeatedSection(m_check, *met.inf, section, m_on.system.section);
                    CheckSection(*met.inf, section);
                }
            }
        }
    }

private:
    /// @return all IDs that the installer compares on the system. Few kits have a line that asks for them.
    [[nodiscard]] const std::unordered_set<std::string_view>& FoundIds()
    {
        if (!m_found) {
            m_found.emplace();
            for (const MetInf& met : m_on.infs) {
                for (const std::string& section : m_on.sectionNames) {
                    AddFoundIds(met, section);
                }
            }
        }
        return *m_found;
    }

    void AddFoundIds(const MetInf& met, const std::string& section)
    {
        if (!met.Qualifies()) {
            return;
        }
        for (const ModelEntry& entry : met.inf->EntriesOf(section)) {
            if (entry.found) {
                m_found->insert(*entry.found);
            }
        }
    }

    void Add(const InfFacts& inf, int rule, const ModelEntry& entry, const std::string& what) const
    {
        m_check.Add(rule, inf.Path(), entry.place, what, m_on.system.section);
    }

    void CheckSection(InfFacts& inf, const std::string& section)
    {
        std::set<std::string> otherVendors;
        bool saidCut = false;
        for (const ModelEntry& entry : inf.EntriesOf(section)) {
            if (entry.line == nullptr) {
                continue;
            }
            if (!entry.isRead) {
                if (!saidCut && IsOfAcceptedVendor(entry.setupId)) {
                    Add(inf, 207, entry, entry.setupId + " lies after the cut of " + InBrackets(section));
                    saidCut = true;
                }
                continue;
            }
            const LineFinding finding = JudgeFirstId(entry);
            if (finding.rule == 305 && !otherVendors.insert(entry.setupId.substr(0, 8)).second) {
                continue;
            }
            if (finding.rule != 0) {
                Add(inf, finding.rule, entry, finding.what);
            }
            CheckFollowingIds(inf, entry);
        }
    }

    void CheckFollowingIds(const InfFacts& inf, const ModelEntry& entry)
    {
        const std::vector<std::string>& fields = entry.line->fields;
        for (std::size_t field = 2; field < fields.size(); ++field) {
            const std::string id = ComparedId(fields[field]);
            if (IsOfAcceptedVendor(id) && IsSearched(id) && !FoundIds().contains(id)) {
                Add(inf, 301, entry, id + " comes after another ID");
            }
        }
    }

    const KitCheck& m_check;
    const SystemReading& m_on;
    std::optional<std::unordered_set<std::string_view>> m_found; ///< when it was asked for
};
} // namespace

void CheckModelSections(const KitCheck& check, const SystemReading& on)
{
    LineChecks(check, on).Run();
}
