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
#include "Modes.h"
#include "PlatformCalls.h"
#include "Scenario.h"
#include "Verdicts.h"

namespace {
using testing::ElementsAreArray;
using testing::IsEmpty;

constexpr std::size_t kMemorySamples = 12;

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
        EXPECT_TRUE(faulted.reached || ComesByChance(verdict.call)) << "call " << ordinal << " is not made";
        EXPECT_THAT(WordsFor(Difference(clean.lines, faulted.lines)), ElementsAreArray(verdict.expected))
            << "call " << ordinal;
        if (!everyCall) {
            break;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Calls, FailingCall, testing::ValuesIn(AllCases()), NameOf);

// --- memory

class MemoryShortage : public testing::TestWithParam<const ScenarioRow*>
{
};

/// Requests from different places in the program first, then all.
std::vector<unsigned> RequestsToFail(const Outcome& clean)
{
    std::vector<unsigned> all;
    std::vector<unsigned> firstOfEachPlace;
    std::set<std::uint32_t> places;
    for (unsigned i = 0; i < clean.memoryStacks.size(); ++i) {
        all.push_back(i + 1);
        if (places.insert(clean.memoryStacks[i]).second) {
            firstOfEachPlace.push_back(i + 1);
        }
    }
    if (everyCall) {
        return all;
    }
    std::vector<unsigned> some;
    for (std::size_t i = 0; i < kMemorySamples; ++i) {
        some.push_back(firstOfEachPlace.at((2 * i + 1) * firstOfEachPlace.size() / (2 * kMemorySamples)));
    }
    return some;
}

/// Values are whole or not there at all, "Install" comes last, and what exists during an install only is gone.
void ExpectNothingHalfWritten(const Outcome& clean, const Outcome& faulted)
{
    const auto leftBy = [](const Outcome& outcome) {
        std::set<std::string> left;
        for (const std::string& line : outcome.lines) {
            if (line.starts_with("left: ")) {
                left.insert(line);
            }
        }
        return left;
    };
    const std::set<std::string> whole = leftBy(clean);
    const std::set<std::string> left = leftBy(faulted);
    bool installed = false;
    for (const std::string& line : left) {
        EXPECT_TRUE(whole.contains(line)) << line;
        installed = installed || line.find(R"(Basedrivers\\Install type)") != std::string::npos;
    }
    for (const std::string& line : whole) {
        const bool isVersion = line.find(R"(Version type)") != std::string::npos;
        EXPECT_TRUE(!installed || !isVersion || left.contains(line)) << line;
    }
}

TEST_P(MemoryShortage, EndsTheRunWithItsTraceOrIsDoneWithoutAndLeavesNothingHalfWritten)
{
    const ScenarioRow& row = *GetParam();
    const Outcome clean = Stage::WithoutFault(row);
    for (const unsigned request : RequestsToFail(clean)) {
        SCOPED_TRACE("request " + std::to_string(request) + " of " + std::to_string(clean.memoryRequests));
        const Outcome faulted = Stage::Use(row).Run({.call = {}, .memoryRequest = request});
        EXPECT_TRUE(faulted.reached);
        EXPECT_TRUE(faulted.ended);
        ExpectNothingHalfWritten(clean, faulted);
        if (faulted.exitCode == clean.exitCode && Difference(clean.lines, faulted.lines).empty()) {
            continue;
        }
        EXPECT_EQ(static_cast<int>(faulted.exitCode), -1);
        EXPECT_EQ(std::ranges::count(faulted.lines, "trace: unhandled fault: std::bad_alloc<LF>"), 1);
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
    for (const std::string& name : ImportsOf(DistFolder() + "\\Morvix.exe")) {
        EXPECT_NE(FindPlatformCall(name), nullptr) << name << " needs a row that says how it fails, and verdicts";
    }
}

TEST(ProgramCalls, TestBuildMakesTheSameAsTheShippedProgram)
{
    std::vector<std::string> tested =
        ImportsOf(DoublesFolder() + R"(\..\faults\morvix_faulted.exe)", "fault_hooks.dll");
    std::vector<std::string> shipped = ImportsOf(DistFolder() + "\\Morvix.exe");
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
    const std::vector<std::string> imports = ImportsOf(DoublesFolder() + R"(\..\faults\morvix_faulted.exe)");
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
