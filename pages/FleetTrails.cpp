#include "FleetTrails.h"

#include <algorithm>
#include <array>
#include <span>
#include <utility>

#include "OSCode.h"
#include "PlanText.h"
#include "SystemNames.h"

namespace {
/// As many passed-over files a trail names itself; more are counted, and the list of searched files has them all.
constexpr std::size_t kMostNamed = 10;

constexpr std::array kVerdicts = std::to_array({InfVerdict::NotListed, InfVerdict::Excluded, InfVerdict::OtherSignature,
                                                InfVerdict::OtherBrand, InfVerdict::ListsDevice});

void WriteField(HtmlWriter& html, const Markup& label, std::string_view text)
{
    html.Put("<dt>").Put(label).Put("</dt><dd>").Text(text).Put("</dd>");
}

/// The files that one system's searches have met, in the order of the search, and what became of each whatever the
/// device was.
struct SearchedFiles
{
    const std::vector<std::string>* infs = nullptr;
    std::vector<InfVerdict> verdicts;
    bool isReferred = false; ///< some trail counts files instead of naming them
};

using Trails = std::vector<std::size_t>;

SearchedFiles FilesOf(const FleetReport& report, const Trails& trails)
{
    SearchedFiles files;
    for (const std::size_t trail : trails) {
        const SearchOutcome& search = *report.Trails()[trail].device.search;
        if (files.infs == nullptr || search.infs.size() > files.infs->size()) {
            files.infs = &search.infs;
        }
        files.isReferred = files.isReferred || search.passedOver.size() > kMostNamed;
    }
    files.verdicts.assign(files.infs->size(), InfVerdict::NotListed);
    for (const std::size_t trail : trails) {
        const SearchOutcome& search = *report.Trails()[trail].device.search;
        if (!std::ranges::equal(search.infs, std::span(*files.infs).first(search.infs.size()))) {
            continue; // a machine of another code page, where the files have other names
        }
        for (const JudgedInf& over : search.passedOver) {
            if (over.verdict != InfVerdict::ListsDevice) {
                files.verdicts[over.inf] = over.verdict;
            }
        }
    }
    return files;
}

void WritePassedOver(HtmlWriter& html, const FleetReport& report, const FleetTrail& trail)
{
    const SearchOutcome& search = *trail.device.search;
    if (search.passedOver.empty()) {
        return;
    }
    html.Put("<dt>Passed over</dt>");
    const bool namesAll = search.passedOver.size() <= kMostNamed;
    for (const InfVerdict verdict : kVerdicts) {
        std::vector<std::string> names;
        std::size_t count = 0;
        for (const JudgedInf& over : search.passedOver) {
            if (over.verdict == verdict) {
                ++count;
                if (namesAll) {
                    names.push_back(report.Paths().NameOf(search.infs[over.inf]));
                }
            }
        }
        if (count == 0) {
            continue;
        }
        html.Put("<dd>").Text(InWords(verdict)).Put(": ").Text(namesAll ? Joined(names) : CountOf(count, "file"));
        html.Put("</dd>");
    }
    if (!namesAll) {
        html.Put("<dd><a href=\"#f-").Text(trail.section).Put("\">the files in the order of the search</a></dd>");
    }
}

void WriteMatch(HtmlWriter& html, const FleetReport& report, const SearchOutcome& search)
{
    switch (search.verdict) {
        case SearchVerdict::Matched: {
            const Match& match = *search.match;
            html.Put("<dt>Driver</dt><dd><code>").Text(report.Paths().NameOf(match.inf)).Put("</code>, line ");
            html.Text(Grouped(match.line)).Put(", pass ").Number(static_cast<std::uint64_t>(match.pass));
            html.Put(", section <code>[").Text(match.modelSection).Put("]</code></dd><dd>");
            html.Text(match.description).Put(", ").Text(match.driverVersion).Put("</dd>");
            break;
        }
        case SearchVerdict::NoInf:
            WriteField(html, "Driver", "none: no INF file lists the device in any pass");
            break;
        case SearchVerdict::Fault:
            WriteField(html, "Driver",
                       "none: the key name has no \"&REV\" for pass " + std::to_string(search.lastPass) +
                           "; the run ends here with a fault, and no device after this one gets a driver");
            break;
    }
}

void WriteDirectories(HtmlWriter& html, const FleetReport& report, const FleetTrail& trail)
{
    html.Put("<dt>Searched</dt>");
    const std::vector<std::string>& directories = trail.device.search->directories;
    for (const std::string& directory : directories) {
        html.Put("<dd><code>").Text(report.Paths().NameOf(directory)).Put("</code></dd>");
    }
    if (directories.empty()) {
        html.Put("<dd>no folder: <code>[").Text(trail.section).Put("]</code> of Morvix.ini names none</dd>");
    }
}

/// What the page's script writes into a table of values.
void WriteValues(HtmlWriter& html, const FleetReport& report, const FleetTrail& trail)
{
    html.Attribute("data-key", trail.device.key).Attribute("data-by", trail.device.acceptedBy);
    if (const std::optional<Match>& match = trail.device.search->match) {
        html.Attribute("data-inf", report.Paths().NameOf(match->inf));
        html.Attribute("data-line", std::to_string(match->line)).Attribute("data-pass", std::to_string(match->pass));
        html.Attribute("data-section", match->modelSection).Attribute("data-name", match->description);
        html.Attribute("data-ver", match->driverVersion);
    }
}

void WriteTrail(HtmlWriter& html, const FleetReport& report, std::size_t number)
{
    const FleetTrail& trail = report.Trails()[number];
    const SearchOutcome& search = *trail.device.search;
    const bool isMatched = search.verdict == SearchVerdict::Matched;
    html.Put("<details class=trail").Attribute("id", "w" + std::to_string(number));
    WriteValues(html, report, trail);
    html.Put("><summary>").Put(isMatched ? Markup("<svg class=good") : Markup("<svg class=bad"));
    html.Put(" aria-hidden=true><use href=\"#i-").Put(isMatched ? Markup("good") : Markup("bad"));
    html.Put("\"/></svg><code>").Text(trail.device.key).Put("</code> <span>");
    html.Text(DriverOf(search, report.Paths())).Put("</span> <span class=quiet>");
    html.Text(CountOf(trail.machines, "machine")).Put("</span></summary><dl>");
    WriteField(html, "Served because",
               trail.device.acceptedBy.empty() ? std::string(InWords(trail.device.acceptance))
                                               : "its compatible ID " + trail.device.acceptedBy + " is accepted");
    WriteDirectories(html, report, trail);
    WriteMatch(html, report, search);
    WritePassedOver(html, report, trail);
    if (isMatched) {
        WriteField(
            html, "Result",
            search.report ? InWords(*search.report) : "none is written: the INF's name belongs to no driver family");
    }
    html.Put("</dl></details>\n");
}

void WriteFiles(HtmlWriter& html, const FleetReport& report, const SearchedFiles& files, std::string_view section)
{
    html.Put("<details class=trail")
        .Attribute("id", "f-" + std::string(section))
        .Put("><summary>Files in the order of ");
    html.Put("the search <span class=quiet>").Text(CountOf(files.infs->size(), "file")).Put("</span></summary><ol>");
    for (std::size_t inf = 0; inf < files.infs->size(); ++inf) {
        html.Put("<li><code>").Text(report.Paths().NameOf((*files.infs)[inf])).Put("</code>");
        if (files.verdicts[inf] != InfVerdict::NotListed) {
            html.Put(" <span class=quiet>").Text(InWords(files.verdicts[inf])).Put("</span>");
        }
    }
    html.Put("</ol></details>\n");
}
} // namespace

std::string_view VersionIn(std::string_view driverVersion)
{
    const std::size_t comma = driverVersion.find(',');
    std::string_view version = comma == std::string_view::npos ? driverVersion : driverVersion.substr(comma + 1);
    while (version.starts_with(' ')) {
        version.remove_prefix(1);
    }
    return version;
}

std::string DriverOf(const SearchOutcome& search, const MachinePaths& paths)
{
    if (!search.match) {
        return search.verdict == SearchVerdict::Fault ? "no driver: the run ends here" : "no driver";
    }
    return paths.NameOf(search.match->inf) + ", " + std::string(VersionIn(search.match->driverVersion));
}

void WriteTrails(HtmlWriter& html, const FleetReport& report)
{
    std::map<std::string, Trails> bySection;
    for (std::size_t trail = 0; trail < report.Trails().size(); ++trail) {
        bySection[report.Trails()[trail].section].push_back(trail);
    }
    for (const SystemRow& row : kSystems) {
        const auto found = bySection.find(std::string(row.sectionKey));
        if (found == bySection.end()) {
            continue;
        }
        Trails& trails = found->second;
        std::ranges::stable_sort(trails, {}, [&report](std::size_t trail) {
            const DevicePlan& device = report.Trails()[trail].device;
            return std::pair(device.search->verdict == SearchVerdict::Matched, device.key);
        });
        const SearchedFiles files = FilesOf(report, trails);
        html.Put("<h3>").Text(NameOfSystem(row.sectionKey)).Put(" <code>[").Text(row.sectionKey).Put("]</code></h3>\n");
        for (const std::size_t trail : trails) {
            WriteTrail(html, report, trail);
        }
        if (files.isReferred) {
            WriteFiles(html, report, files, row.sectionKey);
        }
        bySection.erase(found);
    }
}
