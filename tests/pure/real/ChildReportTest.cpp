#include "ChildReport.h"

#include <gtest/gtest.h>

TEST(ChildReport, ComesBackAsItWasWritten)
{
    const ChildReport report{.values = {{"exit", "-1"}, {"empty", ""}, {"text", "a=b\\n\r\n\\"}},
                             .lines = {"Morvix: one\n", "", R"(Morvix: C:\new\ready)", "value x=1", "line y"}};
    EXPECT_EQ(DecodeReport(EncodeReport(report)), report);
    EXPECT_EQ(DecodeReport(EncodeReport({})), ChildReport{});
}

TEST(ChildReport, SaysSoWhenAValueIsMissing)
{
    const ChildReport report{.values = {{"exit", "0"}}, .lines = {}};
    EXPECT_EQ(report.At("exit"), "0");
    EXPECT_EQ(report.At("error"), "<none>");
}

TEST(ChildReport, IgnoresWhatItDoesNotKnow)
{
    EXPECT_EQ(DecodeReport("noise\nvalue without\nvalue a=1\n"), (ChildReport{.values = {{"a", "1"}}, .lines = {}}));
}
