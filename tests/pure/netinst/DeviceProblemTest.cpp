#include "DeviceProblem.h"

#include <gtest/gtest.h>

#include <map>

namespace {
constexpr uint32_t kHasProblem = 0x400;
constexpr uint32_t kNeedsRestart = 0x100;
constexpr uint32_t kLoadedAndStarted = 0x2 | 0x8;

DeviceVerdict VerdictOnProblem(uint32_t problem)
{
    return JudgeDevice({.status = kHasProblem, .problem = problem});
}
} // namespace

TEST(DeviceProblem, ADeviceWithoutAProblemAcceptsItsDriver)
{
    EXPECT_EQ(JudgeDevice({}), DeviceVerdict::Accepted);
    EXPECT_EQ(JudgeDevice({.status = kLoadedAndStarted, .problem = 0}), DeviceVerdict::Accepted);
    EXPECT_EQ(JudgeDevice({.status = kHasProblem, .problem = 0}), DeviceVerdict::Accepted);
}

TEST(DeviceProblem, ANumberWithoutTheProblemBitMeansNothing)
{
    EXPECT_EQ(JudgeDevice({.status = kLoadedAndStarted, .problem = 52}), DeviceVerdict::Accepted);
    EXPECT_EQ(ProblemOf({.status = kLoadedAndStarted, .problem = 52}), 0U);
    EXPECT_EQ(ProblemOf({.status = kHasProblem | kLoadedAndStarted, .problem = 52}), 52U);
}

TEST(DeviceProblem, EveryProblemIsARefusalExceptThoseThatTheDriverDidNotCause)
{
    const std::map<uint32_t, DeviceVerdict> others = {
        {14, DeviceVerdict::NeedsRestart}, {38, DeviceVerdict::NeedsRestart}, {46, DeviceVerdict::NeedsRestart},
        {21, DeviceVerdict::Gone},         {45, DeviceVerdict::Gone},         {47, DeviceVerdict::Gone},
        {22, DeviceVerdict::Accepted},     {29, DeviceVerdict::Accepted},     {32, DeviceVerdict::Accepted},
        {51, DeviceVerdict::Accepted},     {53, DeviceVerdict::Accepted},     {54, DeviceVerdict::Accepted},
        {55, DeviceVerdict::Accepted},     {56, DeviceVerdict::Accepted},
    };
    for (uint32_t problem = 1; problem < 100; ++problem) {
        const auto other = others.find(problem);
        EXPECT_EQ(VerdictOnProblem(problem), other != others.end() ? other->second : DeviceVerdict::Refused) << problem;
    }
}

TEST(DeviceProblem, ADriverThatIsNotStartedNotLoadedOrUnsignedIsRefused)
{
    for (const uint32_t problem : {1U, 10U, 28U, 31U, 37U, 39U, 43U, 48U, 52U}) {
        EXPECT_EQ(VerdictOnProblem(problem), DeviceVerdict::Refused) << problem;
    }
}

TEST(DeviceProblem, ADeviceThatMayBeAbsentBrokenOrWithoutDriversIsARefusal)
{
    EXPECT_EQ(VerdictOnProblem(24), DeviceVerdict::Refused);
}

TEST(DeviceProblem, ADriverWhoseServiceIsDisabledIsAcceptedLikeADisabledDevice)
{
    EXPECT_EQ(VerdictOnProblem(32), VerdictOnProblem(22));
    EXPECT_EQ(VerdictOnProblem(32), DeviceVerdict::Accepted);
}

TEST(DeviceProblem, ADeviceThatWorksMayStillNeedARestart)
{
    EXPECT_EQ(JudgeDevice({.status = kLoadedAndStarted | kNeedsRestart, .problem = 0}), DeviceVerdict::NeedsRestart);
    EXPECT_EQ(JudgeDevice({.status = kLoadedAndStarted, .updateNeedsRestart = true}), DeviceVerdict::NeedsRestart);
    EXPECT_EQ(JudgeDevice({.updateNeedsRestart = true}), DeviceVerdict::NeedsRestart) << "a state that was not read";
    EXPECT_EQ(JudgeDevice({.status = kHasProblem | kNeedsRestart, .problem = 22}), DeviceVerdict::NeedsRestart);
}

TEST(DeviceProblem, ADriverThatIsNotStartedOrLoadedIsNotJudgedBeforeAPendingRestart)
{
    for (uint32_t problem = 1; problem < 100; ++problem) {
        SCOPED_TRACE(problem);
        const DeviceVerdict verdict = VerdictOnProblem(problem);
        const bool isOpen = problem == 10 || problem == 31 || problem == 37 || problem == 39;
        const DeviceVerdict pending =
            isOpen || verdict == DeviceVerdict::Accepted ? DeviceVerdict::NeedsRestart : verdict;
        EXPECT_EQ(JudgeDevice({.status = kHasProblem | kNeedsRestart, .problem = problem}), pending);
        EXPECT_EQ(JudgeDevice({.status = kHasProblem, .problem = problem, .updateNeedsRestart = true}), pending);
    }
}

TEST(DeviceProblem, ARestartSolvesNoRefusedSignature)
{
    EXPECT_EQ(JudgeDevice({.status = kHasProblem | kNeedsRestart, .problem = 52, .updateNeedsRestart = true}),
              DeviceVerdict::Refused);
}

TEST(DeviceProblem, TheErrorOfAProblemIsNotAnErrorOfTheSystem)
{
    EXPECT_EQ(ErrorForProblem(52), 0x20000034U);
    EXPECT_EQ(ErrorForProblem(10), 0x2000000AU);
}
