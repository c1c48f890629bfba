#include "FleetGroups.h"

#include <algorithm>
#include <set>
#include <string>
#include <string_view>

#include "FleetTrails.h"
#include "FleetVerdict.h"
#include "PlanText.h"
#include "SystemNames.h"

namespace {
/// As many machines of a group the table names at once.
constexpr std::size_t kFewMachines = 2;

/// @return the name of a file without folders and ending.
std::string_view StemOf(std::string_view source)
{
    const std::size_t slash = source.find_last_of("/\\");
    const std::string_view file = slash == std::string_view::npos ? source : source.substr(slash + 1);
    return file.substr(0, file.rfind('.'));
}

class GroupWriter
{
public:
    GroupWriter(HtmlWriter& html, const FleetReport& report) : m_html(html), m_report(report)
    {
        std::set<std::string_view> seen;
        for (const FleetGroup& group : report.Groups()) {
            for (const FleetMachine& machine : group.machines) {
                if (!seen.insert(machine.name).second) {
                    m_sharedNames.insert(machine.name);
                }
            }
        }
    }

    void Write(const FleetGroup& group)
    {
        m_html.Put("<tbody").Attribute("data-state", NameOf(group.state));
        m_html.Attribute("data-rank", std::to_string(static_cast<int>(group.state)));
        m_html.Attribute("data-count", std::to_string(group.machines.size()));
        m_html.Put("><tr><td><span class=state>");
        WriteMark(MarkOf(group.state));
        m_html.Text(InWords(group.state)).Put("</span><th scope=row>");
        WriteMachinesInShort(group.machines);
        m_html.Put("<td>").Text(NameOfSystem(group.system.section)).Put(" <code>").Text(group.system.section);
        m_html.Put("</code><td>");
        WriteDevices(group);
        m_html.Put("<tr class=more><td colspan=4><details><summary>");
        m_html.Text(CountOf(group.machines.size(), "machine")).Put(", and where the system comes from</summary>");
        WriteMore(group);
        m_html.Put("</details></tbody>\n");
    }

private:
    void WriteMark(FleetMark mark)
    {
        switch (mark) {
            case FleetMark::Bad:
                m_html.Put("<svg class=bad aria-hidden=true><use href=\"#i-bad\"/></svg>");
                break;
            case FleetMark::Doubtful:
                m_html.Put("<svg class=doubt aria-hidden=true><use href=\"#i-doubt\"/></svg>");
                break;
            case FleetMark::Good:
                m_html.Put("<svg class=good aria-hidden=true><use href=\"#i-good\"/></svg>");
                break;
            case FleetMark::None:
                m_html.Put("<svg class=none aria-hidden=true><use href=\"#i-none\"/></svg>");
                break;
        }
    }

    void WriteMachinesInShort(const std::vector<FleetMachine>& machines)
    {
        m_html.Put("<b>").Text(Grouped(machines.size())).Put("</b> <span class=quiet>");
        for (std::size_t at = 0; at < machines.size() && at < kFewMachines; ++at) {
            m_html.Text(at == 0 ? "" : ", ").Text(machines[at].name);
        }
        if (machines.size() > kFewMachines) {
            m_html.Text(" and " + Grouped(machines.size() - kFewMachines) + " more");
        }
        m_html.Put("</span>");
    }

    void WriteLoss(const LostDriver& lost)
    {
        m_html.Put("<span class=loss>loses <del>").Text(lost.driver).Put("</del></span>");
    }

    void WriteDevice(const FleetDevice& device, const std::vector<LostDriver>& lost)
    {
        const std::string& key = m_report.Trails()[device.trail].device.key;
        const SearchOutcome& search = *m_report.Trails()[device.trail].device.search;
        m_html.Put("<li").Put(search.match ? Markup("") : Markup(" class=lacking")).Put("><a href=\"#w");
        m_html.Number(device.trail).Put("\"><code>").Text(key).Put("</code></a><span>");
        m_html.Text(DriverOf(search, m_report.Paths()));
        m_html.Text(device.presence == Presence::Absent ? "; the card is absent" : "").Put("</span>");
        if (const auto loss = std::ranges::find(lost, key, &LostDriver::key); loss != lost.end()) {
            WriteLoss(*loss);
        }
    }

    void WriteDevices(const FleetGroup& group)
    {
        if (!group.problem.empty()) {
            m_html.Put("<p>").Text(group.problem).Put("</p>");
        }
        if (group.folded != 0) {
            m_html.Put("<p>").Text(CountOf(group.folded, "set")).Put(" of adapters, not shown one by one</p>");
        }
        m_html.Put("<ul class=devices>");
        for (const FleetDevice& device : group.devices) {
            WriteDevice(device, group.lost);
        }
        for (const LostDriver& lost : group.lost) {
            const auto isThis = [&](const FleetDevice& device) {
                return m_report.Trails()[device.trail].device.key == lost.key;
            };
            if (std::ranges::none_of(group.devices, isThis)) {
                m_html.Put("<li><code>").Text(lost.key).Put("</code>");
                WriteLoss(lost);
            }
        }
        m_html.Put("</ul>");
        if (group.notReached != 0) {
            m_html.Put("<p>").Text(CountOf(group.notReached, "further device")).Put(" not reached</p>");
        }
    }

    void WriteMore(const FleetGroup& group)
    {
        m_html.Put("<dl><dt>System<dd><code>[").Text(group.system.section).Put("]</code>, from the ");
        m_html.Text(group.system.from).Put("; family \"").Text(group.system.family).Put("\", from the ");
        m_html.Text(group.system.familyFrom);
        for (const std::string& reason : group.system.reasons) {
            m_html.Put("<dd>").Text(reason);
        }
        if (!group.leftAlone.empty()) {
            m_html.Put("<dt>Left alone");
            for (const RejectedDevice& device : group.leftAlone) {
                m_html.Put("<dd><code>").Text(device.key).Put("</code>: ").Text(InWords(device.verdict));
            }
        }
        m_html.Put("</dl><ul class=machines>");
        for (const FleetMachine& machine : group.machines) {
            WriteMachine(machine);
        }
        m_html.Put("</ul>");
    }

    /// The file is shown where the name does not tell it.
    void WriteMachine(const FleetMachine& machine)
    {
        m_html.Put("<li").Attribute("data-file", machine.source).Put(">").Text(machine.name);
        if (m_sharedNames.contains(machine.name) || StemOf(machine.source) != machine.name) {
            m_html.Put(" <span class=quiet>").Text(machine.source).Put("</span>");
        }
    }

    HtmlWriter& m_html;
    const FleetReport& m_report;
    std::set<std::string_view> m_sharedNames; ///< of more than one machine
};

void WriteTools(HtmlWriter& html, const FleetReport& report)
{
    html.Put(
        "<form class=tools role=search aria-label=\"Machines\" hidden>\n"
        "<label>Filter <input type=search id=filter autocomplete=off spellcheck=false "
        "aria-describedby=filter-help></label>\n"
        "<fieldset><legend>Show</legend>");
    for (std::size_t state = 0; state < kFleetStates; ++state) {
        const auto value = static_cast<FleetState>(state);
        if (report.Machines(value) != 0) {
            html.Put("<label><input type=checkbox name=state checked").Attribute("value", NameOf(value)).Put(">");
            html.Text(InWords(value)).Put(" <span class=quiet>").Text(Grouped(report.Machines(value)));
            html.Put("</span></label>");
        }
    }
    html.Put(
        "</fieldset>\n<button type=button id=csv>Download as CSV</button>\n"
        "<p id=filter-help class=quiet>A part of a machine's name, an adapter, an INF file, or a system.</p>\n"
        "<p id=shown role=status></p></form>\n");
}
} // namespace

void WriteGroups(HtmlWriter& html, const FleetReport& report)
{
    if (report.Groups().empty()) {
        return;
    }
    html.Put("<section aria-labelledby=h-machines><h2 id=h-machines>Machines</h2>\n");
    html.Put(
        "<p>Machines with the same system and the same adapters are one row. An adapter leads to the way in which ");
    html.Put("its driver is found.</p>\n");
    if (const std::size_t machines = report.FoldedMachines(); machines != 0) {
        html.Put("<p>There are too many different sets of adapters for one page: ").Text(CountOf(machines, "machine"));
        html.Put(machines == 1 ? Markup(" is") : Markup(" are"));
        html.Put(
            " in rows of state and system alone, without adapters and drivers here, below, and in the CSV. "
            "<code>morvix-kit plan --ndjson</code> has all of them.</p>\n");
    }
    WriteTools(html, report);
    html.Put(
        "<table id=groups><caption>Machines by system and adapters, those that need attention first</caption>\n"
        "<thead><tr><th scope=col data-sort=state>State<th scope=col data-sort=count>Machines"
        "<th scope=col data-sort=system>System<th scope=col data-sort=adapters>Adapters and drivers</thead>\n");
    GroupWriter writer(html, report);
    for (const FleetGroup& group : report.Groups()) {
        writer.Write(group);
    }
    html.Put("</table></section>\n");
}
