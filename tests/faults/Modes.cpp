#include "Modes.h"

#include <algorithm>
#include <iostream>
#include <memory>
#include <set>

#include "Memory.h"
#include "Scenario.h"
#include "Verdicts.h"

namespace {
std::unique_ptr<Scenario> Make(const std::string& name)
{
    for (const ScenarioRow& row : AllScenarios()) {
        if (row.name == name) {
            return row.make();
        }
    }
    std::cerr << "there is no scenario " << name << "\n";
    return nullptr;
}

/// The calls for which scenarios before this one have verdicts.
std::set<CallName> HeldBefore(const std::string& name)
{
    std::set<CallName> held;
    for (const ScenarioRow& row : AllScenarios()) {
        if (row.name == name) {
            std::erase_if(held, [&](const CallName& call) {
                return std::ranges::find(row.again, Describe(call)) != row.again.end();
            });
            break;
        }
        for (const Verdict& verdict : ReadVerdicts(row.name)) {
            held.insert(verdict.call);
        }
    }
    return held;
}

/// @return which of `count` calls of the same name are looked at: those between are like the ones before them.
std::vector<unsigned> Picked(const CallName& call, unsigned count)
{
    constexpr unsigned kFirst = 1;
    std::vector<unsigned> picked;
    for (unsigned ordinal = 1; ordinal <= std::min(count, kFirst); ++ordinal) {
        picked.push_back(ordinal);
    }
    if (count > kFirst && !ComesByChance(call)) {
        picked.push_back(count);
    }
    return picked;
}

/// Calls that fare alike share a verdict.
void Add(std::vector<Verdict>& verdicts, const CallName& call, unsigned ordinal, std::vector<std::string> words)
{
    const auto same = std::ranges::find_if(
        verdicts, [&](const Verdict& verdict) { return verdict.call == call && verdict.expected == words; });
    if (same == verdicts.end()) {
        verdicts.push_back({call, {ordinal}, std::move(words)});
    } else {
        same->ordinals.push_back(ordinal);
    }
}

const Verdict* VerdictFor(const std::vector<Verdict>& verdicts, const CallName& call, unsigned ordinal)
{
    const auto own = std::ranges::find_if(verdicts, [&](const Verdict& verdict) {
        return verdict.call == call && std::ranges::find(verdict.ordinals, ordinal) != verdict.ordinals.end();
    });
    return own == verdicts.end() ? nullptr : &*own;
}

/// What every run must do, whichever call fails: come to an end that the program has chosen.
bool EndsByItself(const Outcome& outcome)
{
    const auto code = static_cast<int>(outcome.exitCode);
    return outcome.ended && (code == 0 || code == -1);
}

unsigned Report(const std::string& what, const std::vector<std::string>& lines)
{
    std::cout << what << "\n";
    for (const std::string& line : lines) {
        std::cout << "    " << line << "\n";
    }
    return 1;
}

unsigned EveryCallOf(const ScenarioRow& row, unsigned& runs)
{
    const std::unique_ptr<Scenario> scenario = row.make();
    const Outcome clean = scenario->Run({}, true);
    const std::vector<Verdict> verdicts = ReadVerdicts(row.name);
    unsigned wrong = 0;
    for (const auto& [call, count] : clean.calls) {
        for (unsigned ordinal = 1; ordinal <= count; ++ordinal) {
            const Outcome faulted = scenario->Run({.call = call, .ordinal = ordinal});
            ++runs;
            const Verdict* const verdict = VerdictFor(verdicts, call, ordinal);
            const std::vector<std::string> words = WordsFor(Difference(clean.lines, faulted.lines));
            const bool asExpected =
                verdict == nullptr || words == verdict->expected || (!faulted.reached && ComesByChance(call));
            if (!asExpected || !EndsByItself(faulted)) {
                wrong += Report(std::string(row.name) + ": " + Describe(call) + " " + std::to_string(ordinal), words);
            }
        }
    }
    for (const bool isOut : {false, true}) {
        for (unsigned request = 1; request <= clean.memoryRequests; ++request) {
            const Fault fault{.call = {}, .memoryRequest = request, .memoryIsOut = isOut};
            const Outcome faulted = scenario->Run(fault);
            ++runs;
            std::vector<std::string> complaints = Complaints(clean, faulted, fault);
            if (!complaints.empty()) {
                const std::vector<std::string> difference = Difference(clean.lines, faulted.lines);
                complaints.insert(complaints.end(), difference.begin(), difference.end());
                wrong += Report(std::string(row.name) + ": request " + std::to_string(request) + " for memory" +
                                    (isOut ? " and all behind it" : ""),
                                complaints);
            }
        }
    }
    return wrong;
}
} // namespace

int EveryCall(const std::string& scenario)
{
    unsigned runs = 0;
    unsigned wrong = 0;
    for (const ScenarioRow& row : AllScenarios()) {
        if (!scenario.empty() && scenario != row.name) {
            continue;
        }
        wrong += EveryCallOf(row, runs);
        std::cout << row.name << ": " << runs << " runs so far, " << wrong << " wrong\n" << std::flush;
    }
    return runs != 0 && wrong == 0 ? 0 : 1;
}

int WriteDown(const std::string& name)
{
    const std::unique_ptr<Scenario> scenario = Make(name);
    if (!scenario) {
        return 2;
    }
    const std::set<CallName> held = HeldBefore(name);
    const Outcome clean = scenario->Run();
    std::vector<Verdict> verdicts;
    for (const auto& [call, count] : clean.calls) {
        if (held.contains(call)) {
            continue;
        }
        for (const unsigned ordinal : Picked(call, count)) {
            const Outcome faulted = scenario->Run({.call = call, .ordinal = ordinal});
            Add(verdicts, call, ordinal,
                faulted.reached ? WordsFor(Difference(clean.lines, faulted.lines))
                                : std::vector<std::string>{"not reached"});
        }
        std::cerr << Describe(call) << " " << count << "\n";
        WriteVerdicts(name, verdicts);
    }
    return 0;
}

int Show(const std::string& name)
{
    const std::unique_ptr<Scenario> scenario = Make(name);
    if (!scenario) {
        return 2;
    }
    const Outcome first = scenario->Run();
    const DWORD start = GetTickCount();
    const Outcome clean = scenario->Run({}, true);
    std::cout << "one run takes " << GetTickCount() - start << " ms\n";
    for (const std::string& line : clean.lines) {
        std::cout << line << "\n";
    }
    std::cout << "\n";
    unsigned all = 0;
    for (const auto& [call, count] : clean.calls) {
        std::cout << Describe(call) << " " << count << "\n";
        all += count;
    }
    for (const std::string& unknown : clean.unknownCalls) {
        std::cout << "unknown: " << unknown << "\n";
    }
    const std::set<std::uint32_t> stacks(clean.memoryStacks.begin(), clean.memoryStacks.end());
    std::cout << all << " calls of " << clean.calls.size() << " kinds, " << clean.memoryRequests
              << " memory requests from " << stacks.size() << " places, " << clean.memoryRequestsOfStart
              << " of them before the program itself begins\n";
    for (const std::string& line : Difference(first.lines, clean.lines)) {
        std::cout << "differs: " << line << "\n";
    }
    return 0;
}
