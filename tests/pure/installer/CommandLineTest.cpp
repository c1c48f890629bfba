#include "CommandLine.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using testing::ElementsAre;
using testing::IsEmpty;

namespace {
OptionMap Parse(std::vector<const char*> tokens, int* count = nullptr)
{
    tokens.insert(tokens.begin(), "Morvix.exe");
    OptionMap optionMap{{"/left over", {}}};
    const int options = ParseCommandLine(optionMap, static_cast<int>(tokens.size()), tokens.data());
    EXPECT_EQ(static_cast<int>(optionMap.size()), options);
    if (count != nullptr) {
        *count = options;
    }
    return optionMap;
}

CommandLineDecision Decide(const std::vector<const char*>& tokens)
{
    return DecideOptions(Parse(tokens));
}

std::string Flags(const RunOptionsRecord& options)
{
    std::string text;
    for (const auto& [name, flag] :
         std::initializer_list<std::pair<const char*, bool>>{{"silent ", options.silent},
                                                             {"forceReboot ", options.forceReboot},
                                                             {"suppressReboot ", options.suppressReboot},
                                                             {"msiMode ", options.msiMode},
                                                             {"oemGui ", options.oemGui},
                                                             {"forceInfScan ", options.forceInfScan}}) {
        text += flag ? name : "";
    }
    return text;
}

struct OptionRow
{
    std::vector<const char*> tokens;
    const char* flags;
};

void PrintTo(const OptionRow& row, std::ostream* out)
{
    for (const char* token : row.tokens) {
        *out << token << ' ';
    }
}

class OptionRows : public testing::TestWithParam<OptionRow>
{
};
} // namespace

TEST_P(OptionRows, DecideTheRun)
{
    EXPECT_EQ(GetParam().flags, Flags(Decide(GetParam().tokens).options));
}

INSTANTIATE_TEST_SUITE_P(
    CommandLine, OptionRows,
    testing::Values(
        OptionRow{{"/s"}, "silent "}, OptionRow{{"/S"}, "silent "}, OptionRow{{"/s", "/r"}, "silent forceReboot "},
        OptionRow{{"/S", "/R"}, "silent forceReboot "}, OptionRow{{"/s", "/nr"}, "silent suppressReboot "},
        OptionRow{{"/s", "/NR"}, "silent suppressReboot "}, OptionRow{{"/s", "/r", "/nr"}, "silent forceReboot "},
        OptionRow{{"/s", "/nr", "/r"}, "silent forceReboot "}, OptionRow{{"/s", "/m"}, "silent msiMode "},
        OptionRow{{"/s", "/M"}, "silent msiMode "}, OptionRow{{"/s", "/md"}, "silent msiMode oemGui "},
        OptionRow{{"/s", "/MD"}, "silent msiMode oemGui "}, OptionRow{{"/s", "/m", "/md"}, "silent msiMode "},
        OptionRow{{"/s", "/m", "/r"}, "silent forceReboot "}, OptionRow{{"/s", "/md", "/nr"}, "silent suppressReboot "},
        OptionRow{{"/m"}, "msiMode "}, OptionRow{{"/M"}, "msiMode "}, OptionRow{{"/md"}, "msiMode oemGui "},
        OptionRow{{"/MD"}, "msiMode oemGui "}, OptionRow{{"/m", "/md"}, "msiMode "}, OptionRow{{"/nr"}, ""},
        OptionRow{{"/NR", "/R"}, ""}, OptionRow{{"/x"}, ""}, OptionRow{{"/n"}, "forceInfScan "},
        OptionRow{{"/N"}, "forceInfScan "}, OptionRow{{"/s", "/n"}, "silent forceInfScan "},
        OptionRow{{"/s", "/r", "/N"}, "silent forceReboot forceInfScan "},
        OptionRow{{"/md", "/n"}, "msiMode oemGui forceInfScan "}));

TEST(CommandLine, SilentWithNoRestartCancelsMsiMode)
{
    EXPECT_EQ("silent suppressReboot ", Flags(Decide({"/S", "/nr", "/m"}).options));
}

TEST(CommandLine, RestartWithoutSilentDoesNothing)
{
    EXPECT_EQ("", Flags(Decide({"/r"}).options));
}

TEST(CommandLine, RestartWinsOverNoRestart)
{
    EXPECT_EQ("silent forceReboot ", Flags(Decide({"/s", "/r", "/nr"}).options));
}

TEST(CommandLine, MixedSpellingsAreNotOptions)
{
    EXPECT_EQ("", Flags(Decide({"/Md"}).options));
    EXPECT_EQ("silent ", Flags(Decide({"/s", "/mD", "/Nr"}).options));
}

TEST(CommandLine, ForcedScanCombinesWithEveryOtherOption)
{
    for (const char* other : {"/s", "/m", "/md", "/MD", "/r", "/nr"}) {
        EXPECT_EQ(1U, Decide({other, "/n"}).options.forceInfScan) << other;
        EXPECT_EQ(0U, Decide({other}).options.forceInfScan) << other;
    }
}

TEST(CommandLine, HelpEndsTheRunBeforeForcedScanIsConsidered)
{
    for (const char* help : {"/h", "/H", "/?"}) {
        const CommandLineDecision decision = Decide({"/s", help, "/n"});
        EXPECT_TRUE(decision.help);
        EXPECT_EQ("", Flags(decision.options));
        EXPECT_THAT(decision.traceLines,
                    ElementsAre("command line: '/h', display help\n", "WinMain() exit, returning 0\n"));
    }
}

TEST(CommandLine, SlashAndDigitIsAValueNotAnOption)
{
    for (const char* value : {"/0", "/1", "/9"}) {
        int count = -1;
        EXPECT_THAT(Parse({value}, &count), IsEmpty());
        EXPECT_EQ(0, count);
    }
    EXPECT_THAT(Decide({"/1"}).traceLines, ElementsAre("command line: no options, install in GUI mode\n"));
}

TEST(CommandLine, ValueBeforeTheFirstOptionIsIgnored)
{
    EXPECT_EQ("silent ", Flags(Decide({"value", "/s"}).options));
    EXPECT_THAT(Parse({"value", "/s"}).at("/s"), IsEmpty());
}

TEST(CommandLine, ValuesBelongToTheOptionBeforeThem)
{
    const OptionMap optionMap = Parse({"/a", "1", "2", "/b", "/2", "/c"});
    EXPECT_EQ(3U, optionMap.size());
    EXPECT_THAT(optionMap.at("/a"), ElementsAre("1", "2"));
    EXPECT_THAT(optionMap.at("/b"), ElementsAre("/2"));
    EXPECT_THAT(optionMap.at("/c"), IsEmpty());
}

TEST(CommandLine, RepeatedOptionKeepsItsFirstEntryAndDropsTheValueTakenWithTheRepetition)
{
    int count = 0;
    const OptionMap optionMap = Parse({"/a", "1", "/a", "2", "3"}, &count);
    EXPECT_EQ(1, count);
    EXPECT_THAT(optionMap.at("/a"), ElementsAre("1", "3"));
    EXPECT_THAT(Parse({"/a", "1", "/a", "2"}).at("/a"), ElementsAre("1"));
}

TEST(CommandLine, LoneSlashAndEmptyTokenAreValues)
{
    EXPECT_THAT(Parse({"/", ""}), IsEmpty());
    EXPECT_THAT(Parse({"/s", "/", ""}).at("/s"), ElementsAre("/", ""));
}

TEST(CommandLine, NoArgumentsAtAllGiveNoOptions)
{
    OptionMap optionMap{{"/old", {}}};
    EXPECT_EQ(0, ParseCommandLine(optionMap, 0, nullptr));
    EXPECT_THAT(optionMap, IsEmpty());
    const CommandLineDecision decision = DecideOptions(optionMap);
    EXPECT_FALSE(decision.help);
    EXPECT_EQ("", Flags(decision.options));
}

TEST(CommandLine, OptionsAreComparedExactly)
{
    const OptionMap optionMap = Parse({"/S"});
    EXPECT_TRUE(HasOption(optionMap, "/S"));
    EXPECT_FALSE(HasOption(optionMap, "/s"));
    EXPECT_FALSE(HasOption(optionMap, "/S "));
}

TEST(CommandLine, EachDecisionIsTraced)
{
    EXPECT_THAT(Decide({"/m"}).traceLines, ElementsAre("command line: '/m', install MSI\n"));
    EXPECT_THAT(Decide({"/md"}).traceLines, ElementsAre("command line: '/md', install MSI, OEM variant\n"));
    EXPECT_THAT(Decide({"/MD"}).traceLines, ElementsAre("command line: '/md', install MSI, OEM variant\n"));
    EXPECT_THAT(Decide({"/s"}).traceLines, ElementsAre("command line: '/s', install silently\n"));
    EXPECT_THAT(Decide({"/s", "/r"}).traceLines,
                ElementsAre("command line: '/s', install silently\n", "command line: '/r', force a reboot\n"));
    EXPECT_THAT(Decide({"/s", "/nr"}).traceLines, ElementsAre("command line: '/s', install silently\n",
                                                              "command line:  '/nr', suppress a reboot request"));
    EXPECT_THAT(Decide({"/s", "/m"}).traceLines,
                ElementsAre("command line: '/s', install silently\n", "command line: '/s /m', install MSI\n"));
    EXPECT_THAT(Decide({"/s", "/md"}).traceLines, ElementsAre("command line: '/s', install silently\n",
                                                              "command line: '/s /md', install MSI, OEM variant\n"));
    EXPECT_THAT(Decide({"/n"}).traceLines, ElementsAre("command line: '/n', force scan of all INF files\n"));
}
