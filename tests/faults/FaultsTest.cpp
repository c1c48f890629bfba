// Every call that the program makes to the platform is made to fail, one at a time: no run crashes or hangs, each gives
// back what it opened, leaves its results whole, and costs only what Decisions.cpp says.

#include <gmock/gmock.h>

#include <algorithm>
#include <map>
#include <memory>
#include <ostream>
#include <set>
#include <string>
#include <vector>

#include "Decisions.h"
#include "Effects.h"
#include "Environment.h"
#include "ImportTable.h"
#include "Memory.h"
#include "PlatformCalls.h"
#include "Scenario.h"

namespace {
using testing::ElementsAreArray;
using testing::IsEmpty;

constexpr std::size_t kOneRequestSamples = 12;
constexpr std::size_t kLastingSamples = 4;

/// @return the names of all functions that a program imports, in the order of its table, those of the library `without`
///         left out.
std::vector<std::string> ImportedNames(const std::string& program, const std::string& without = {})
{
    std::vector<std::string> names;
    for (const Import& import : ImportsOf(program)) {
        if (import.module != without) {
            names.push_back(import.name);
        }
    }
    return names;
}

/// The scenario in use and what a run of each does without a fault. Laying a machine down takes longer than a run.
class Stage
{
public:
    static Scenario& Use(const ScenarioRow& row)
    {
        if (s_name != row.name) {
            s_scenario.reset();
            s_name.clear();
            s_scenario = row.make();
            s_name = row.name;
        }
        return *s_scenario;
    }
    static const Outcome& WithoutFault(const ScenarioRow& row)
    {
        const auto known = s_clean.find(row.name);
        return known != s_clean.end() ? known->second : s_clean.emplace(row.name, Use(row).Run({}, true)).first->second;
    }
    static void Clear()
    {
        s_scenario.reset();
        s_name.clear();
    }

private:
    static inline std::unique_ptr<Scenario> s_scenario;
    static inline std::string s_name;
    static inline std::map<std::string, Outcome> s_clean;
};

class ClearStage : public testing::Environment
{
public:
    void TearDown() override { Stage::Clear(); }
};
testing::Environment* const clearing = testing::AddGlobalTestEnvironment(new ClearStage);

// --- one call fails

/// Calls between the first and the last of their name fare like the one before them.
std::vector<unsigned> Picked(const CallName& call, unsigned count)
{
    if (count == 1 || ComesByChance(call)) {
        return {1};
    }
    return {1, count};
}

/// The calls of a scenario that no earlier one makes, and those that end differently in this one.
std::set<CallName> CallsOf(const ScenarioRow& row)
{
    std::set<CallName> known;
    for (const ScenarioRow& earlier : AllScenarios()) {
        if (&earlier == &row) {
            break;
        }
        for (const auto& [call, count] : Stage::WithoutFault(earlier).calls) {
            known.insert(call);
        }
    }
    std::set<CallName> calls;
    for (const auto& [call, count] : Stage::WithoutFault(row).calls) {
        if (!known.contains(call) || std::ranges::find(row.again, Describe(call)) != row.again.end()) {
            calls.insert(call);
        }
    }
    return calls;
}

/// One share of a scenario's failing calls.
struct CallShare
{
    const ScenarioRow* row;
    std::size_t number;
    std::size_t shares;
};

void PrintTo(const CallShare& share, std::ostream* out)
{
    *out << share.row->name << ", share " << share.number + 1 << " of " << share.shares;
}

class FailingCall : public testing::TestWithParam<CallShare>
{
};

TEST_P(FailingCall, EndsTheRunAsDecidedAndLeaksNothing)
{
    const auto& [row, number, shares] = GetParam();
    const std::set<CallName> calls = CallsOf(*row);
    EXPECT_GE(calls.size(), shares);
    const Outcome clean = Stage::WithoutFault(*row);
    std::size_t index = 0;
    for (const CallName& call : calls) {
        if (index++ % shares != number) {
            continue;
        }
        for (const unsigned ordinal : Picked(call, clean.calls.at(call))) {
            const Outcome faulted = Stage::Use(*row).Run({.call = call, .ordinal = ordinal});
            EXPECT_THAT(Complaints(row->name, call, ordinal, clean, faulted), IsEmpty())
                << Describe(call) << " " << ordinal;
        }
    }
}

/// The first scenario makes nearly all calls. Its shares can run at the same time, in several programs.
std::vector<CallShare> EachShare()
{
    std::vector<CallShare> each;
    for (const ScenarioRow& row : AllScenarios()) {
        const std::size_t shares = each.empty() ? 8 : 1;
        for (std::size_t number = 0; number < shares; ++number) {
            each.push_back({.row = &row, .number = number, .shares = shares});
        }
    }
    return each;
}

std::string NameOf(const ScenarioRow& row)
{
    std::string name = row.name;
    std::ranges::replace(name, '-', '_');
    return name;
}

std::string NameOfShare(const testing::TestParamInfo<CallShare>& tested)
{
    const auto& [row, number, shares] = tested.param;
    return NameOf(*row) + (shares == 1 ? "" : "_" + std::to_string(number + 1));
}

INSTANTIATE_TEST_SUITE_P(Runs, FailingCall, testing::ValuesIn(EachShare()), NameOfShare);

// --- memory

class MemoryShortage : public testing::TestWithParam<const ScenarioRow*>
{
};

/// Requests from places spread over the whole run.
std::vector<unsigned> Samples(const Outcome& clean, std::size_t count)
{
    const std::vector<unsigned> requests = FirstRequests(clean);
    std::vector<unsigned> samples;
    for (std::size_t i = 0; i < count; ++i) {
        samples.push_back(requests.at((2 * i + 1) * requests.size() / (2 * count)));
    }
    return samples;
}

TEST_P(MemoryShortage, OfOneRequestEndsTheRunWithItsTraceOrIsToleratedAndLeavesNothingHalfWritten)
{
    const Outcome clean = Stage::WithoutFault(*GetParam());
    for (const unsigned request : Samples(clean, kOneRequestSamples)) {
        const Fault fault{.call = {}, .memoryRequest = request};
        const Outcome faulted = Stage::Use(*GetParam()).Run(fault);
        EXPECT_THAT(Complaints(clean, faulted, fault), IsEmpty()) << "request " << request;
    }
}

TEST_P(MemoryShortage, ThatLastsEndsTheRunAndLeavesNothingHalfWritten)
{
    const Outcome clean = Stage::WithoutFault(*GetParam());
    for (const unsigned request : Samples(clean, kLastingSamples)) {
        const Fault fault{.call = {}, .memoryRequest = request, .memoryIsOut = true};
        const Outcome faulted = Stage::Use(*GetParam()).Run(fault);
        EXPECT_THAT(Complaints(clean, faulted, fault), IsEmpty()) << "from request " << request;
    }
}

INSTANTIATE_TEST_SUITE_P(Runs, MemoryShortage,
                         testing::Values(&AllScenarios()[0], &AllScenarios()[1], &AllScenarios()[3]),
                         [](const auto& tested) { return NameOf(*tested.param); });

// --- the table of calls

TEST(ProgramCalls, EveryImportIsInTheTable)
{
    for (const std::string& name : ImportedNames(DistFolder() + "\\Morvix.exe")) {
        EXPECT_NE(FindPlatformCall(name), nullptr) << name << " needs a row that says how it fails";
    }
}

TEST(ProgramCalls, TestBuildMakesTheSameAsTheShippedProgram)
{
    std::vector<std::string> tested =
        ImportedNames(DoublesFolder() + R"(\..\faults\morvix_faulted.exe)", "fault_hooks.dll");
    std::vector<std::string> shipped = ImportedNames(DistFolder() + "\\Morvix.exe");
    std::ranges::sort(tested);
    std::ranges::sort(shipped);
    EXPECT_THAT(tested, ElementsAreArray(shipped));
}

TEST(ProgramCalls, TheTableKnowsEveryCallThatIsMade)
{
    for (const ScenarioRow& row : AllScenarios()) {
        EXPECT_THAT(Stage::WithoutFault(row).unknownCalls, IsEmpty()) << row.name;
    }
}

TEST(ProgramCalls, EveryDecisionIsAboutACallThatIsMade)
{
    std::set<const Decision*> used;
    for (const ScenarioRow& row : AllScenarios()) {
        for (const CallName& call : CallsOf(row)) {
            for (const unsigned ordinal : Picked(call, Stage::WithoutFault(row).calls.at(call))) {
                used.insert(FindDecision(row.name, call, ordinal));
            }
        }
    }
    for (const Decision& decision : AllDecisions()) {
        EXPECT_TRUE(used.contains(&decision)) << decision.call;
    }
}

TEST(ProgramCalls, EachThatCanFailIsMadeAndNoOtherCan)
{
    const std::vector<std::string> imports = ImportedNames(DoublesFolder() + R"(\..\faults\morvix_faulted.exe)");
    std::set<std::string> made;
    for (const ScenarioRow& row : AllScenarios()) {
        const Outcome& clean = Stage::WithoutFault(row);
        for (std::size_t i = 0; i < imports.size(); ++i) {
            if (clean.importCalled.at(i)) {
                made.insert(imports[i]);
            }
        }
        for (const auto& [call, count] : clean.calls) {
            made.insert(call.function);
        }
    }
    for (const PlatformCall& call : PlatformCalls()) {
        if (call.kind == CallKind::Fails) {
            EXPECT_TRUE(made.contains(std::string(call.name))) << "no run makes the call " << call.name;
        } else if (call.kind == CallKind::Unused) {
            EXPECT_FALSE(made.contains(std::string(call.name))) << "a run makes the call " << call.name;
        }
    }
}
} // namespace
