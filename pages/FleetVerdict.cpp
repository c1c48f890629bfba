#include "FleetVerdict.h"

#include <algorithm>
#include <array>
#include <vector>

#include "HtmlWriter.h"

namespace {
struct StateRow
{
    FleetState state;
    FleetMark mark;
    std::string_view name;
    std::string_view words;
    std::string_view meaning;
    std::string_view one;  ///< "1 loses a driver"
    std::string_view many; ///< "2 lose a driver"
};

/// One row for each state, in their order.
constexpr std::array kStates = std::to_array<StateRow>({
    {FleetState::Loses, FleetMark::Bad, "loses", "Loses a driver", "this kit has no driver where the old kit has one",
     "loses a driver", "lose a driver"},
    {FleetState::BreaksOff, FleetMark::Bad, "breaks-off", "Run breaks off",
     "the run ends with a fault before every adapter had its turn", "has a run that breaks off",
     "have a run that breaks off"},
    {FleetState::Lacks, FleetMark::Bad, "lacks", "Lacks a driver", "no INF file lists one of its adapters",
     "lacks a driver", "lack a driver"},
    {FleetState::Refused, FleetMark::Bad, "refused", "Refused", "the installer ends before it looks for drivers",
     "is refused by the installer", "are refused by the installer"},
    {FleetState::InDoubt, FleetMark::Doubtful, "in-doubt", "Result in doubt",
     "all drivers, but a result value may not say SUCCESS", "has a doubtful result", "have a doubtful result"},
    {FleetState::Served, FleetMark::Good, "served", "All drivers", "every adapter gets a driver", {}, {}},
    {FleetState::NoAdapter, FleetMark::None, "no-adapter", "No adapter", "nothing that Morvix serves", {}, {}},
});
static_assert(kStates.size() == kFleetStates);
static_assert(std::ranges::is_sorted(kStates, {}, &StateRow::state));

const StateRow& RowOf(FleetState state)
{
    return kStates.at(static_cast<std::size_t>(state));
}

/// @return the texts as a list in a sentence: "a", "a and b", "a, b, and c".
std::string Listed(const std::vector<std::string>& texts)
{
    std::string list;
    for (std::size_t at = 0; at < texts.size(); ++at) {
        if (at != 0) {
            list += texts.size() > 2 ? ", " : " ";
            list += at + 1 == texts.size() ? "and " : "";
        }
        list += texts[at];
    }
    return list;
}

std::string SentenceWithoutTrouble(const FleetReport& report)
{
    const std::size_t all = report.Machines();
    if (report.Machines(FleetState::NoAdapter) == all) {
        return all == 1 ? "The machine has no adapter that Morvix serves."
                        : "None of the " + CountOf(all, "machine") + " has an adapter that Morvix serves.";
    }
    return all == 1 ? "The machine gets a driver for every adapter."
                    : "All " + CountOf(all, "machine") + " get a driver for every adapter.";
}
} // namespace

std::string_view NameOf(FleetState state)
{
    return RowOf(state).name;
}

std::string_view InWords(FleetState state)
{
    return RowOf(state).words;
}

std::string_view Meaning(FleetState state)
{
    return RowOf(state).meaning;
}

FleetMark MarkOf(FleetState state)
{
    return RowOf(state).mark;
}

FleetVerdict VerdictOf(const FleetReport& report)
{
    const std::size_t all = report.Machines();
    if (all == 0) {
        return {.mark = FleetMark::Doubtful, .sentence = "No machine was found."};
    }
    FleetVerdict verdict;
    std::vector<std::string> clauses;
    std::size_t troubled = 0;
    const auto add = [&](std::size_t machines, FleetMark mark, std::string_view one, std::string_view many) {
        if (machines == 0) {
            return;
        }
        verdict.mark = std::min(verdict.mark, mark);
        clauses.push_back(Grouped(machines) + " " + std::string(machines == 1 ? one : many));
        troubled += machines;
    };
    for (const StateRow& row : kStates) {
        if (!row.one.empty()) {
            add(report.Machines(row.state), row.mark, row.one, row.many);
        }
    }
    add(report.Unknown().size(), FleetMark::Doubtful, "could not be read", "could not be read");
    if (clauses.empty()) {
        verdict.sentence = SentenceWithoutTrouble(report);
        return verdict;
    }
    const std::string good = troubled == all ? "."
                             : all - troubled == 1
                                 ? "; the other one gets a driver for every adapter."
                                 : "; the other " + Grouped(all - troubled) + " get a driver for every adapter.";
    verdict.sentence = "Of " + CountOf(all, "machine") + ", " + Listed(clauses) + good;
    return verdict;
}
