#include "FleetAdapters.h"

#include <algorithm>
#include <map>

#include "FleetTrails.h"
#include "OSCode.h"
#include "SystemNames.h"

namespace {
struct Driver
{
    std::string text;
    bool isThere = false;
    std::size_t devices = 0;
    std::size_t trail = 0; ///< the one that most devices follow
    std::size_t most = 0;
};

struct Adapter
{
    std::string name; ///< as an INF describes it; empty when none does
    std::map<std::string, std::vector<Driver>> bySection;
};

using Adapters = std::map<std::string, Adapter>;

void Count(Adapter& adapter, const FleetReport& report, std::size_t number)
{
    const FleetTrail& trail = report.Trails()[number];
    const SearchOutcome& search = *trail.device.search;
    const std::string text = DriverOf(search, report.Paths());
    std::vector<Driver>& drivers = adapter.bySection[trail.section];
    auto driver = std::ranges::find(drivers, text, &Driver::text);
    if (driver == drivers.end()) {
        drivers.push_back({.text = text, .isThere = search.match.has_value()});
        driver = drivers.end() - 1;
    }
    driver->devices += trail.machines;
    if (trail.machines > driver->most) {
        driver->most = trail.machines;
        driver->trail = number;
    }
    if (adapter.name.empty() && search.match) {
        adapter.name = search.match->description;
    }
}

Adapters AdaptersOf(const FleetReport& report)
{
    Adapters adapters;
    for (std::size_t trail = 0; trail < report.Trails().size(); ++trail) {
        Count(adapters[std::string(AdapterOf(report.Trails()[trail].device.key))], report, trail);
    }
    for (auto& [key, adapter] : adapters) {
        for (auto& [section, drivers] : adapter.bySection) {
            std::ranges::stable_sort(drivers, [](const Driver& one, const Driver& other) {
                return one.isThere != other.isThere ? !one.isThere : one.devices > other.devices;
            });
        }
    }
    return adapters;
}

std::vector<std::string_view> SectionsOf(const FleetReport& report)
{
    std::vector<std::string_view> sections;
    for (const SystemRow& row : kSystems) {
        const bool isNew = sections.empty() || sections.back() != row.sectionKey;
        if (isNew &&
            std::ranges::find(report.Trails(), row.sectionKey, &FleetTrail::section) != report.Trails().end()) {
            sections.push_back(row.sectionKey);
        }
    }
    return sections;
}

void WriteCell(HtmlWriter& html, const Adapter& adapter, std::string_view section)
{
    const auto drivers = adapter.bySection.find(std::string(section));
    if (drivers == adapter.bySection.end()) {
        html.Put("<td class=none><span class=unseen>not in the fleet</span>");
        return;
    }
    html.Put("<td>");
    for (const Driver& driver : drivers->second) {
        html.Put("<div><svg class=").Put(driver.isThere ? Markup("good") : Markup("bad"));
        html.Put(" aria-hidden=true><use href=\"#i-").Put(driver.isThere ? Markup("good") : Markup("bad"));
        html.Put("\"/></svg><span><a href=\"#w")
            .Number(driver.trail)
            .Put("\">")
            .Text(driver.text)
            .Put("</a> <span class=quiet>");
        html.Text(CountOf(driver.devices, "device")).Put("</span></span></div>");
    }
}
} // namespace

std::string_view AdapterOf(std::string_view deviceKey)
{
    const std::size_t vendorEnd = deviceKey.find('&');
    return vendorEnd == std::string_view::npos ? deviceKey : deviceKey.substr(0, deviceKey.find('&', vendorEnd + 1));
}

void WriteAdapters(HtmlWriter& html, const FleetReport& report)
{
    const Adapters adapters = AdaptersOf(report);
    if (adapters.empty()) {
        return;
    }
    const std::vector<std::string_view> sections = SectionsOf(report);
    html.Put(
        "<section aria-labelledby=h-adapters><h2 id=h-adapters>Adapters and systems</h2>\n"
        "<div class=scroll role=region aria-label=\"Table of adapters and systems\" tabindex=0><table class=grid>\n"
        "<caption>Which driver each adapter gets on each system of the fleet</caption>\n"
        "<thead><tr><th scope=col>Adapter");
    for (const std::string_view section : sections) {
        html.Put("<th scope=col>").Text(NameOfSystem(section)).Put(" <code>").Text(section).Put("</code>");
    }
    html.Put("</thead>\n<tbody>\n");
    for (const auto& [key, adapter] : adapters) {
        html.Put("<tr><th scope=row><code>").Text(key).Put("</code>");
        if (!adapter.name.empty()) {
            html.Put("<span class=quiet>").Text(adapter.name).Put("</span>");
        }
        for (const std::string_view section : sections) {
            WriteCell(html, adapter, section);
        }
        html.Put("\n");
    }
    html.Put("</tbody></table></div></section>\n");
}
