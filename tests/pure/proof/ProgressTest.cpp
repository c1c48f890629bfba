#include "Progress.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace {
const std::vector<Step> kSteps = ParseSteps("One|1|a\nTwo|1|b");

std::optional<Progress::Next> NextAfter(const std::string& kept)
{
    return Progress(kept).FirstUnfinished(kSteps);
}
} // namespace

TEST(Progress, ANewRunBeginsWithTheFirstStep)
{
    const auto next = NextAfter(Progress::StepsLine(""));
    ASSERT_TRUE(next);
    EXPECT_EQ(next->step, &kSteps[0]);
    EXPECT_FALSE(next->afterRestart);
    EXPECT_FALSE(next->wasInterrupted);
}

TEST(Progress, AnEndedStepIsNeverRepeated)
{
    const std::string kept = Progress::BegunLine(kSteps[0]) + Progress::EndedLine(kSteps[0]);
    EXPECT_EQ(NextAfter(kept)->step, &kSteps[1]);
    EXPECT_FALSE(NextAfter(kept + Progress::BegunLine(kSteps[1]) + Progress::EndedLine(kSteps[1])));
}

TEST(Progress, AStepThatBeganAndDidNotEndWasInterrupted)
{
    const auto next = NextAfter(Progress::BegunLine(kSteps[0]));
    EXPECT_EQ(next->step, &kSteps[0]);
    EXPECT_TRUE(next->wasInterrupted);
}

TEST(Progress, AStepThatWantsARestartGoesOnAfterIt)
{
    const std::string kept = Progress::BegunLine(kSteps[0]) + Progress::RestartLine(kSteps[0]);
    const auto next = NextAfter(kept);
    EXPECT_EQ(next->step, &kSteps[0]);
    EXPECT_TRUE(next->afterRestart);
    EXPECT_FALSE(next->wasInterrupted);
    EXPECT_TRUE(NextAfter(kept + Progress::BegunLine(kSteps[0]))->wasInterrupted);
}

TEST(Progress, TheChosenStepsAreKept)
{
    EXPECT_EQ(Progress(Progress::StepsLine("Two One")).ChosenSteps(), "Two One");
    EXPECT_EQ(Progress(Progress::StepsLine("")).ChosenSteps(), "");
}

TEST(Progress, ALineThatWasBeingWrittenWhenTheMachineEndedIsIgnored)
{
    EXPECT_TRUE(NextAfter(Progress::BegunLine(kSteps[0]) + "ended One")->wasInterrupted);
    EXPECT_FALSE(NextAfter("begun O")->wasInterrupted);
}

TEST(Progress, AnyOtherLineIsRefused)
{
    EXPECT_THROW(Progress("finished One\n"), std::invalid_argument);
}
