#include "DeviceProblem.h"

#include <gtest/gtest.h>

#include <map>

namespace {
constexpr uint32_t kHasProblem = 0x400;
constexpr uint32_t kNeedsRestart = 0x100;
constexpr uint32_t kLoadedAndStarted = 0x2 | 0x8;

DriverVerdict VerdictOnProblem(uint32_t problem)
{
    return JudgeDriver({.status = kHasProblem, .problem = problem});
}
} // namespace

TEST(DeviceProblem, ADeviceWithoutAProblemAcceptsItsDriver)
{
    EXPECT_EQ(JudgeDriver({}), DriverVerdict::Accepted);
    EXPECT_EQ(JudgeDriver({.status = kLoadedAndStarted, .problem = 0}), DriverVerdict::Accepted);
    EXPECT_EQ(JudgeDriver({.status = kHasProblem, .problem = 0}), DriverVerdict::Accepted);
}

TEST(DeviceProblem, ANumberWithoutTheProblemBitMeansNothing)
{
    EXPECT_EQ(JudgeDriver({.status = kLoadedAndStarted, .problem = 52}), DriverVerdict::Accepted);
    EXPECT_EQ(ProblemOf({.status = kLoadedAndStarted, .problem = 52}), 0U);
    EXPECT_EQ(ProblemOf({.status = kHasProblem | kLoadedAndStarted, .problem = 52}), 52U);
}

TEST(DeviceProblem, EveryProblemIsARefusalExceptThoseThatTheDriverDidNotCause)
{
    const std::map<uint32_t, DriverVerdict> others = {
        {14, DriverVerdict::NeedsRestart}, {38, DriverVerdict::NeedsRestart}, {46, DriverVerdict::NeedsRestart},
        {21, DriverVerdict::Gone},         {45, DriverVerdict::Gone},         {47, DriverVerdict::Gone},
        {22, DriverVerdict::Accepted},     {29, DriverVerdict::Accepted},     {32, DriverVerdict::Accepted},
        {51, DriverVerdict::Accepted},     {53, DriverVerdict::Accepted},     {54, DriverVerdict::Accepted},
        {55, DriverVerdict::Accepted},     {56, DriverVerdict::Accepted},
    };
    for (uint32_t problem = 1; problem < 100; ++problem) {
        const auto other = others.find(problem);
        EXPECT_EQ(VerdictOnProblem(problem), other != others.end() ? other->second : DriverVerdict::Refused) << problem;
    }
}

TEST(DeviceProblem, ADriverThatIsNotStartedNotLoadedOrUnsignedIsRefused)
{
    for (const uint32_t problem : {1U, 10U, 28U, 31U, 37U, 39U, 43U, 48U, 52U}) {
        EXPECT_EQ(VerdictOnProblem(problem), DriverVerdict::Refused) << problem;
    }
}

TEST(DeviceProblem, ADeviceThatMayBeAbsentBrokenOrWithoutDriversIsARefusal)
{
    EXPECT_EQ(VerdictOnProblem(24), DriverVerdict::Refused);
}

TEST(DeviceProblem, ADriverWhoseServiceIsDisabledIsAcceptedLikeADisabledDevice)
{
    EXPECT_EQ(VerdictOnProblem(32), VerdictOnProblem(22));
    EXPECT_EQ(VerdictOnProblem(32), DriverVerdict::Accepted);
}

TEST(DeviceProblem, ADeviceThatWorksMayStillNeedARestart)
{
    EXPECT_EQ(JudgeDriver({.status = kLoadedAndStarted | kNeedsRestart, .problem = 0}), DriverVerdict::NeedsRestart);
    EXPECT_EQ(JudgeDriver({.status = kLoadedAndStarted, .updateNeedsRestart = true}), DriverVerdict::NeedsRestart);
    EXPECT_EQ(JudgeDriver({.updateNeedsRestart = true}), DriverVerdict::NeedsRestart) << "a state that was not read";
    EXPECT_EQ(JudgeDriver({.status = kHasProblem | kNeedsRestart, .problem = 22}), DriverVerdict::NeedsRestart);
}

TEST(DeviceProblem, ADriverThatIsNotStartedOrLoadedIsNotJudgedBeforeAPendingRestart)
{
    for (uint32_t problem = 1; problem < 100; ++problem) {
        SCOPED_TRACE(problem);
        const DriverVerdict verdict = VerdictOnProblem(problem);
        const bool isOpen = problem == 10 || problem == 31 || problem == 37 || problem == 39;
        const DriverVerdict pending =
            isOpen || verdict == DriverVerdict::Accepted ? DriverVerdict::NeedsRestart : verdict;
        EXPECT_EQ(JudgeDriver({.status = kHasProblem | kNeedsRestart, .problem = problem}), pending);
        EXPECT_EQ(JudgeDriver({.status = kHasProblem, .problem = problem, .updateNeedsRestart = true}), pending);
    }
}

TEST(DeviceProblem, ARestartSolvesNoRefusedSignature)
{
    EXPECT_EQ(JudgeDriver({.status = kHasProblem | kNeedsRestart, .problem = 52, .updateNeedsRestart = true}),
              DriverVerdict::Refused);
}

TEST(DeviceProblem, TheErrorOfAProblemIsNotAnErrorOfTheSystem)
{
    EXPECT_EQ(ErrorForProblem(52), 0x20000034U);
    EXPECT_EQ(ErrorForProblem(10), 0x2000000AU);
}
