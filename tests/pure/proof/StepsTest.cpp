#include "Steps.h"

#include <gmock/gmock.h>

#include <stdexcept>

using testing::ElementsAre;
using testing::Field;

namespace {
std::vector<std::string> NamesOf(const std::vector<Step>& steps)
{
    std::vector<std::string> names;
    for (const Step& step : steps) {
        names.push_back(step.name);
    }
    return names;
}
} // namespace

TEST(Steps, ALineIsANameALimitAndACommand)
{
    const std::vector<Step> steps = ParseSteps("# comment\r\nImports|300|tests\\x.exe --gtest_filter=A|B\r\n");
    ASSERT_EQ(steps.size(), 1U);
    EXPECT_EQ(steps[0].name, "Imports");
    EXPECT_EQ(steps[0].limitSeconds, 300U);
    EXPECT_EQ(steps[0].command, "tests\\x.exe --gtest_filter=A|B");
    EXPECT_EQ(steps[0].judgedBy, JudgedBy::Results);
}

TEST(Steps, ACommandMayBeJudgedByItsExitCode)
{
    const std::vector<Step> steps = ParseSteps("Plan|120|exit-code morvix-kit.exe plan");
    ASSERT_EQ(steps.size(), 1U);
    EXPECT_EQ(steps[0].judgedBy, JudgedBy::ExitCode);
    EXPECT_EQ(steps[0].command, "morvix-kit.exe plan");
}

TEST(Steps, ADamagedListIsRefused)
{
    for (const char* damaged : {"no command", "Name|10", "Name|0|command", "Name||command", "Name|x|command",
                                "Name|10x|command", "|10|command", "two words|10|command", "../up|10|command",
                                "Name|10|", "Name|10|exit-code ", "Twice|1|a\nTwice|1|b"}) {
        EXPECT_THROW(static_cast<void>(ParseSteps(damaged)), std::invalid_argument) << damaged;
    }
}

TEST(Steps, ChosenOnesKeepTheOrderOfTheList)
{
    const std::vector<Step> steps = ParseSteps("One|1|a\nTwo|1|b\nThree|1|c");
    EXPECT_THAT(NamesOf(ChooseSteps(steps, "")), ElementsAre("One", "Two", "Three"));
    EXPECT_THAT(NamesOf(ChooseSteps(steps, " Three  One ")), ElementsAre("One", "Three"));
    EXPECT_THROW(static_cast<void>(ChooseSteps(steps, "One Four")), std::invalid_argument);
}
