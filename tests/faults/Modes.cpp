#include "Modes.h"

#include <algorithm>
#include <iostream>
#include <memory>
#include <set>

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
            break;
        }
        for (const Verdict& verdict : ReadVerdicts(row.name)) {
            held.insert(verdict.call);
        }
    }
    return held;
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
} // namespace

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
        const unsigned most = ComesByChance(call) ? std::min(count, 3U) : count;
        for (unsigned ordinal = 1; ordinal <= most; ++ordinal) {
            const Outcome faulted = scenario->Run({.call = call, .ordinal = ordinal});
            Add(verdicts, call, ordinal,
                faulted.reached ? WordsFor(Difference(clean.lines, faulted.lines))
                                : std::vector<std::string>{"not reached"});
        }
        std::cerr << Describe(call) << " " << most << "\n";
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
              << " memory requests from " << stacks.size() << " places\n";
    for (const std::string& line : Difference(first.lines, clean.lines)) {
        std::cout << "differs: " << line << "\n";
    }
    return 0;
}
