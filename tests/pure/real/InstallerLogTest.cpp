#include "InstallerLog.h"

#include <gtest/gtest.h>

namespace {
std::string AsUtf16(const std::string& ascii)
{
    std::string bytes = "\xFF\xFE";
    for (const char c : ascii) {
        bytes += c;
        bytes += '\0';
    }
    return bytes;
}
} // namespace

TEST(InstallerLog, ReadsTheSameInBothEncodings)
{
    const std::string text = "MSI (s) begins\r\nMorvix: RebootNeeded is not recorded: no restart\r\n";
    EXPECT_EQ(InstallerLogText(text), text);
    EXPECT_EQ(InstallerLogText(AsUtf16(text)), text);
}

TEST(InstallerLog, ShowsWhatIsNotAsciiAsQuestionMarks)
{
    using namespace std::string_view_literals;
    EXPECT_EQ(InstallerLogText("\xFF\xFE"
                               "a\0\xFC\0\x41\x04z\0"sv),
              "a??z");
    EXPECT_EQ(InstallerLogText("\xFF\xFE"
                               "a\0b"sv),
              "a");
}

TEST(InstallerLog, FindsWholeLinesOfTheStepsOnly)
{
    const std::string log =
        "Morvix: running \"x\" /s /m\r\nProperty(S): A = Morvix: done\r\nMorvix: done at last\nMorvix: ended";
    EXPECT_TRUE(StepLogged(log, "running \"x\" /s /m"));
    EXPECT_TRUE(StepLogged(log, "ended"));
    EXPECT_FALSE(StepLogged(log, "done"));
    EXPECT_FALSE(StepLogged(log, "running"));
    EXPECT_FALSE(StepLogged("", ""));
}

TEST(InstallerLog, FindsTheBeginningsOfLinesOfTheSteps)
{
    const std::string log = "is running\r\nMorvix: running \"x\"\r\n";
    EXPECT_TRUE(StepLoggedLineThatBegins(log, "running "));
    EXPECT_FALSE(StepLoggedLineThatBegins(log, "is "));
    EXPECT_FALSE(StepLoggedLineThatBegins(log, "x"));
}
