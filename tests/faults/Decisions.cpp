#include "Decisions.h"

#include <algorithm>
#include <array>

#include "Effects.h"

namespace {
// The first adapter gets no driver, or none whose results count; the second one is served all the same.
constexpr char kNotFirst[] =
    "-Install, -Reboot, -Version, -family Install, -family Version, -first device, -iSCSI tool, "
    "-registration, -uninstall file";
constexpr char kNotFirstLater[] =
    "+open search <KIT>\\Inf\\*.inf, -Install, -Reboot, -Version, -family Install, -family Version, -first device, "
    "-iSCSI tool, -registration, -status, -uninstall file";
constexpr char kNotSecond[] = "-second device";
constexpr char kNotSecondLater[] = "+open search <KIT>\\Inf\\*.inf, -second device, -status";
// The run ends before the installation begins, and leaves nothing.
constexpr char kRefused[] = "-all";

constexpr std::array kDecisions = std::to_array<Decision>({
    // Without a restore point the run goes on.
    {"install CoInitializeEx() 1", "-its end, -restore point", "Unexpected error: CoInitializeEx() failed", ""},
});

bool Matches(std::string_view text, std::string_view pattern)
{
    if (pattern.empty()) {
        return text.empty();
    }
    if (pattern.front() == '*') {
        return Matches(text, pattern.substr(1)) || (!text.empty() && Matches(text.substr(1), pattern));
    }
    return !text.empty() && text.front() == pattern.front() && Matches(text.substr(1), pattern.substr(1));
}

/// A result key holds what the clean run writes, a failure, or no version; nothing in between.
bool IsWhole(const std::string& line, const Outcome& clean)
{
    return !line.starts_with(R"(left: SOFTWARE\Norda\Basedrivers)") || line.ends_with(" FAILURE<00>") ||
           line.ends_with("Version type 1 <00>") || line.find("Tavunstl_source_path") != std::string::npos ||
           std::ranges::find(clean.lines, line) != clean.lines.end();
}

/// What a run leaves open by design: one search for each pass over a directory, and, when it stops halfway, what it has
/// begun. Everything else stays open only if the clean run keeps it too.
bool MayStay(const std::string& line, const Outcome& clean)
{
    constexpr std::array kByDesign = std::to_array<std::string_view>(
        {R"(search <KIT>\Inf\*.inf)", "COM COM", "library srclient.dll", "library cfgmgr32.dll"});
    constexpr std::string_view kOpen = "still open: ";
    return !line.starts_with(kOpen) || std::ranges::find(kByDesign, line.substr(kOpen.size())) != kByDesign.end() ||
           std::ranges::find(clean.lines, line) != clean.lines.end();
}
} // namespace

std::span<const Decision> AllDecisions()
{
    return kDecisions;
}

const Decision* FindDecision(const std::string& scenario, const CallName& call, unsigned ordinal)
{
    const std::string text = Describe(call) + " " + std::to_string(ordinal);
    const auto* const row = std::ranges::find_if(kDecisions, [&](const Decision& decision) {
        return (decision.scenario.empty() || decision.scenario == scenario) && Matches(text, decision.call);
    });
    return row == kDecisions.end() ? nullptr : &*row;
}

std::vector<std::string> BrokenInvariants(const CallName& call, const Outcome& clean, const Outcome& faulted)
{
    std::vector<std::string> complaints;
    if (!faulted.reached && !ComesByChance(call)) {
        complaints.emplace_back("the call is not made");
    }
    const auto code = static_cast<int>(faulted.exitCode);
    if (!faulted.ended || (code != 0 && code != -1)) {
        complaints.push_back(faulted.ended ? "exit code " + std::to_string(code) : "the run does not end");
    }
    for (const std::string& line : faulted.lines) {
        if (!IsWhole(line, clean)) {
            complaints.push_back("not whole: " + line);
        }
        if (!MayStay(line, clean)) {
            complaints.push_back(line);
        }
    }
    return complaints;
}

std::vector<std::string> Complaints(const std::string& scenario, const CallName& call, unsigned ordinal,
                                    const Outcome& clean, const Outcome& faulted)
{
    std::vector<std::string> complaints = BrokenInvariants(call, clean, faulted);
    const Decision* const decision = FindDecision(scenario, call, ordinal);
    const std::string effects = EffectsOf(clean, faulted);
    if (effects != (decision == nullptr ? "" : decision->effects)) {
        complaints.push_back("effects: " + effects);
    }
    if (decision == nullptr && faulted.lines != clean.lines) {
        const std::vector<std::string> difference = Difference(clean.lines, faulted.lines);
        complaints.insert(complaints.end(), difference.begin(), difference.end());
    } else if (decision != nullptr && !decision->says.empty() &&
               !TracesMore(clean, faulted, std::string(decision->says))) {
        complaints.push_back("does not trace: " + std::string(decision->says));
    }
    return complaints;
}
