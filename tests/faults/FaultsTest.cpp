// Every call that the program makes to the platform is made to fail, one at a time: no run crashes or hangs, each does
// and leaves what its verdict says, and gives back what it opened.

#include <gmock/gmock.h>

#include <algorithm>
#include <map>
#include <memory>
#include <ostream>
#include <set>

#include "Environment.h"
#include "ImportTable.h"
#include "Memory.h"
#include "PlatformCalls.h"
#include "Scenario.h"
#include "Verdicts.h"

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
        if (import.library != without) {
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

struct FaultCase
{
    const ScenarioRow* scenario = nullptr;
    Verdict verdict;
};

void PrintTo(const FaultCase& tested, std::ostream* out)
{
    *out << tested.scenario->name << ": " << Describe(tested.verdict.call);
}

std::vector<FaultCase> AllCases()
{
    std::vector<FaultCase> cases;
    for (const ScenarioRow& row : AllScenarios()) {
        for (Verdict& verdict : ReadVerdicts(row.name)) {
            cases.push_back({&row, std::move(verdict)});
        }
    }
    return cases;
}

std::string NameOf(const testing::TestParamInfo<FaultCase>& tested)
{
    std::string name = std::string(tested.param.scenario->name) + "_" + Describe(tested.param.verdict.call) + "_" +
                       std::to_string(tested.param.verdict.ordinals.front());
    std::ranges::replace_if(
        name, [](unsigned char c) { return std::isalnum(c) == 0; }, '_');
    return name;
}

class FailingCall : public testing::TestWithParam<FaultCase>
{
};

TEST_P(FailingCall, EndsAsItsVerdictSays)
{
    const auto& [row, verdict] = GetParam();
    const Outcome clean = Stage::WithoutFault(*row);
    for (const unsigned ordinal : verdict.ordinals) {
        const Outcome faulted = Stage::Use(*row).Run({.call = verdict.call, .ordinal = ordinal});
        EXPECT_TRUE(faulted.reached) << "call " << ordinal << " is not made";
        EXPECT_THAT(WordsFor(Difference(clean.lines, faulted.lines)), ElementsAreArray(verdict.expected))
            << "call " << ordinal;
    }
}

INSTANTIATE_TEST_SUITE_P(Calls, FailingCall, testing::ValuesIn(AllCases()), NameOf);

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

TEST_P(MemoryShortage, OfOneRequestEndsTheRunWithItsTraceOrIsDoneWithoutAndLeavesNothingHalfWritten)
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
                         [](const testing::TestParamInfo<const ScenarioRow*>& tested) {
                             std::string name = tested.param->name;
                             std::ranges::replace(name, '-', '_');
                             return name;
                         });

// --- the table of calls

TEST(ProgramCalls, EveryImportIsInTheTable)
{
    for (const std::string& name : ImportedNames(DistFolder() + "\\Morvix.exe")) {
        EXPECT_NE(FindPlatformCall(name), nullptr) << name << " needs a row that says how it fails, and verdicts";
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

TEST(ProgramCalls, EachThatCanFailHasAVerdict)
{
    std::set<CallName> held;
    for (const FaultCase& known : AllCases()) {
        held.insert(known.verdict.call);
    }
    for (const ScenarioRow& row : AllScenarios()) {
        const Outcome& clean = Stage::WithoutFault(row);
        EXPECT_THAT(clean.unknownCalls, IsEmpty()) << row.name;
        for (const auto& [call, count] : clean.calls) {
            EXPECT_TRUE(held.contains(call)) << row.name << ": no verdict for " << Describe(call);
        }
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
