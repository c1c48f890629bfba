#include "Modes.h"

#include <algorithm>
#include <iostream>
#include <memory>
#include <set>

#include "Decisions.h"
#include "Effects.h"
#include "Memory.h"
#include "Scenario.h"

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
    unsigned wrong = 0;
    for (const auto& [call, count] : clean.calls) {
        for (unsigned ordinal = 1; ordinal <= count; ++ordinal) {
            const Outcome faulted = scenario->Run({.call = call, .ordinal = ordinal});
            ++runs;
            const std::vector<std::string> complaints = BrokenInvariants(call, clean, faulted);
            if (!complaints.empty()) {
                wrong +=
                    Report(std::string(row.name) + ": " + Describe(call) + " " + std::to_string(ordinal), complaints);
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
                                    (isOut ? " and all after it" : ""),
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
