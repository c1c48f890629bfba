#include "Explain.h"

#include <array>
#include <vector>

#include "PlanText.h"
#include "Printable.h"

namespace {
constexpr std::array<std::string_view, 5> kPassNames{"", "the whole key name", "the name without its revision",
                                                     "the name without its sub-system, with the revision",
                                                     "the name without sub-system and revision"};

constexpr std::size_t kNumberColumns = 4;

/// Numbers the steps of a story.
class Story
{
public:
    Story(const MachinePaths& paths, const TextStyle& style) : m_paths(paths), m_style(style) {}

    void Begin(const std::string& title) { m_out += m_style.Paint(Colour::Strong, title) + "\n"; }
    void Step(const std::string& text)
    {
        const std::string number = std::to_string(++m_steps) + ".";
        AppendField(m_out, m_style, number, text, Colour::None, kNumberColumns);
    }
    void Add(const std::string& text, Colour colour = Colour::None)
    {
        AppendField(m_out, m_style, "", text, colour, kNumberColumns);
    }

    [[nodiscard]] std::string Name(const std::string& path) const { return Printable(m_paths.NameOf(path)); }
    [[nodiscard]] std::string Names(const std::vector<std::string>& paths) const
    {
        std::vector<std::string> names;
        names.reserve(paths.size());
        for (const std::string& path : paths) {
            names.push_back(Name(path));
        }
        return names.empty() ? "none" : Joined(names);
    }
    [[nodiscard]] std::string Text() const { return m_out; }

private:
    const MachinePaths& m_paths;
    const TextStyle& m_style;
    std::string m_out;
    int m_steps = 0;
};

std::string AllPrintable(const std::vector<std::string>& texts)
{
    std::vector<std::string> shown;
    shown.reserve(texts.size());
    for (const std::string& text : texts) {
        shown.push_back("\"" + Printable(text) + "\"");
    }
    return shown.empty() ? "none" : Joined(shown);
}

void TellSystem(Story& story, const PlannedSystem& system)
{
    story.Step("The system is " + Printable(system.section.empty() ? "not served by any section" : system.section) +
               " (" + system.from + "), its family \"" + Printable(system.family) + "\" (" + system.familyFrom + ").");
    for (const std::string& reason : system.reasons) {
        story.Add("- " + Printable(reason));
    }
}

void TellAcceptance(Story& story, const DevicePlan& device)
{
    if (device.acceptance == DeviceVerdict::AcceptedByName) {
        story.Step("The installer serves the device: the maker's vendor number is in its name.");
    } else {
        story.Step("The installer serves the device: its first instance has the compatible ID " +
                   Printable(device.acceptedBy) + ".");
    }
    story.Add("Presence: " + std::string(InWords(device.presence)) + ".");
}

void TellLists(Story& story, const SearchOutcome& search, const PlannedSystem& system)
{
    story.Step("Morvix.ini, section [" + Printable(system.section) +
               "], says where to search: " + story.Names(search.directories) + ".");
    story.Add("Model sections that count, in this order: " + AllPrintable(search.sectionNames) + ".");
    if (!search.excludes.empty()) {
        story.Add("Left out: " + AllPrintable(search.excludes) + ".");
    }
}

void TellPass(Story& story, const SearchOutcome& search, const PassNotes& pass)
{
    story.Step("Pass " + std::to_string(pass.number) + " looks for " + Printable(pass.searchId) + ", " +
               std::string(kPassNames.at(static_cast<std::size_t>(pass.number))) + ".");
    std::size_t others = 0;
    constexpr std::size_t kMostToldFiles = 40;
    for (const JudgedInf& judged : pass.judged) {
        const bool wins = judged.verdict == InfVerdict::ListsDevice;
        if (!wins && &judged - pass.judged.data() >= static_cast<std::ptrdiff_t>(kMostToldFiles)) {
            ++others;
            continue;
        }
        std::string line = story.Name(search.infs[judged.inf]);
        if (wins && search.match) {
            line += ":" + std::to_string(search.match->line) + ": [" + Printable(search.match->modelSection) +
                    "] lists the device; the search ends here";
        } else {
            line += ": " + std::string(InWords(judged.verdict));
        }
        story.Add(line, wins ? Colour::Good : Colour::None);
    }
    if (pass.judged.empty()) {
        story.Add("There is no INF file in the folders searched.");
    } else if (others != 0) {
        story.Add("and " + Counted(others, "more file") + " passed over");
    }
}

void TellEnd(Story& story, const DevicePlan& device)
{
    const SearchOutcome& search = *device.search;
    switch (search.verdict) {
        case SearchVerdict::Matched: {
            const Match& match = *search.match;
            story.Step("The driver is \"" + Printable(match.description) + "\", version " +
                       Printable(match.driverVersion) + ", from " + story.Name(match.inf) + ".");
            break;
        }
        case SearchVerdict::NoInf:
            story.Step("No INF file lists the device in any pass: it gets no driver.");
            break;
        case SearchVerdict::Fault:
            story.Step("Pass " + std::to_string(search.lastPass) +
                       " keeps the revision, and the key name has none: the run ends here with a fault, and no device "
                       "after this one gets a driver.");
            break;
    }
}

void TellStore(Story& story, const DevicePlan& device)
{
    if (device.store->now.empty()) {
        story.Step(
            "No INF file goes to the driver store for this device: those that qualify have been there in this "
            "run, or none does.");
    } else {
        story.Step("To the driver store go, in this order and before anything is bound: " +
                   AllPrintable(device.store->now) + ".");
    }
}

void TellResult(Story& story, const SearchOutcome& search)
{
    if (!search.match) {
        return;
    }
    story.Step(search.report ? "The result value: " + InWords(*search.report) + "."
                             : "No result value is written: the INF's name belongs to no driver family.");
}
} // namespace

std::string ExplainDevice(const MachinePlan& plan, const FoundDevice& device, const MachinePaths& paths,
                          const TextStyle& style)
{
    Story story(paths, style);
    const std::string& key = device.served != nullptr ? device.served->key : device.rejected->key;
    story.Begin(Printable(key) + " on " + Printable(plan.name) + " (" + Printable(plan.source) + ")");
    TellSystem(story, plan.system);
    if (device.served == nullptr) {
        story.Step("The installer does not serve the device: " + std::string(InWords(device.rejected->verdict)) + ".");
        return story.Text();
    }
    const SearchOutcome& search = *device.served->search;
    TellAcceptance(story, *device.served);
    TellLists(story, search, plan.system);
    for (const PassNotes& pass : search.passes) {
        TellPass(story, search, pass);
    }
    TellEnd(story, *device.served);
    TellStore(story, *device.served);
    TellResult(story, search);
    return story.Text();
}
