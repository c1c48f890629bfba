#include "OrvTraceLine.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <string>

namespace {
using Line = std::array<char, kTraceLineBytes>;

// Composes a line whose formatter would have written `message` and returned `result`.
std::string Compose(Line& line, size_t prefixChars, const std::string& message, int result)
{
    std::fill_n(line.begin(), prefixChars, 'p');
    const std::span<char> room = OrvTraceMessageRoom(line, prefixChars);
    std::copy_n(message.begin(), std::min(message.size(), room.size()), room.begin());
    OrvFinishTraceLine(line, prefixChars, room, result);
    return line.data();
}

OrvTracePrefix SomePrefix(const char* moduleName)
{
    OrvTracePrefix prefix;
    prefix.moduleName = moduleName;
    prefix.processId = 0x1A;
    prefix.threadId = 0xFFFFFFFF;
    prefix.hour = 1;
    prefix.minute = 2;
    prefix.second = 59;
    prefix.millisecond = 7;
    prefix.counter = 0x123456789ABCDEFULL;
    return prefix;
}
constexpr char kSomePrefixText[] = "\tPID:1a\tTID:ffffffff\t01:02:59.007\t(123456789ABCDEF)\t";
} // namespace

TEST(TracePrefix, HoldsModuleIdsTimeAndCounter)
{
    Line line{};
    const std::string expected = std::string("Module") + kSomePrefixText;
    EXPECT_EQ(OrvComposeTracePrefix(line, SomePrefix("Module")), static_cast<int>(expected.size()));
    EXPECT_EQ(std::string(line.data()), expected);
}

TEST(TracePrefix, MillisecondsHaveThreeDigitsAndTheRestTwo)
{
    Line line{};
    OrvTracePrefix prefix;
    prefix.hour = 23;
    prefix.millisecond = 999;
    ASSERT_GT(OrvComposeTracePrefix(line, prefix), 0);
    EXPECT_STREQ(line.data(), "\tPID:0\tTID:0\t23:00:00.999\t(0)\t");
}

TEST(TracePrefix, AModuleNameThatLeavesNoRoomFails)
{
    Line line{};
    const size_t rest = std::strlen(kSomePrefixText);
    const std::string longest(kTraceLineBytes - 1 - rest, 'm');
    EXPECT_EQ(OrvComposeTracePrefix(line, SomePrefix(longest.c_str())), 1151);
    EXPECT_EQ(OrvComposeTracePrefix(line, SomePrefix((longest + "m").c_str())), -1);
}

TEST(TraceLine, AMessageIsFollowedByALineFeed)
{
    Line line{};
    EXPECT_EQ(Compose(line, 5, "hello", 5), "ppppphello\n");
    line.fill('x');
    EXPECT_EQ(Compose(line, 5, "", 0), "ppppp\n");
}

TEST(TraceLine, AMessageHasRoomForExactly1023Characters)
{
    Line line{};
    EXPECT_EQ(OrvTraceMessageRoom(line, 0).size(), 1023U);
    EXPECT_EQ(OrvTraceMessageRoom(line, 127).size(), 1023U);
    EXPECT_EQ(OrvTraceMessageRoom(line, 128).size(), 1022U);
    EXPECT_EQ(OrvTraceMessageRoom(line, 1150).size(), 0U);
    EXPECT_EQ(OrvTraceMessageRoom(line, 1151).size(), 0U);
}

TEST(TraceLine, ACutMessageStillEndsWithALineFeed)
{
    Line line{};
    const std::string message(1023, 'm');
    EXPECT_EQ(Compose(line, 50, message, -1), std::string(50, 'p') + message + "\n");
}

TEST(TraceLine, AMessageThatCouldNotBeFormattedEndsWhereTheTextEnds)
{
    Line line{};
    EXPECT_EQ(Compose(line, 4, "half", -1), "pppphalf\n");
}

TEST(TraceLine, TheLineFeedIsNeverBeyondPosition1150)
{
    for (const size_t prefixChars : {127U, 128U, 200U, 1149U, 1150U, 1151U}) {
        Line line{};
        const std::string text = Compose(line, prefixChars, std::string(1023, 'm'), -1);
        EXPECT_EQ(text.size(), std::min<size_t>(prefixChars + 1023, 1150) + 1) << prefixChars;
        EXPECT_EQ(text.back(), '\n');
    }
}

TEST(MessageAsFormat, ATextWithoutPercentSignStaysAsItIs)
{
    EXPECT_EQ(OrvMessageAsFormat("Access denied.\r\n", 4), "Access denied.\r\n");
    EXPECT_EQ(OrvMessageAsFormat("", 4), "");
}

TEST(MessageAsFormat, ConversionsStayInterpreted)
{
    EXPECT_EQ(OrvMessageAsFormat("%d of %-5.2s%%", 4), "%d of %-5.2s%%");
    EXPECT_EQ(OrvMessageAsFormat("100%%", 0), "100%%");
    EXPECT_EQ(OrvMessageAsFormat("%I64X %hs", 4), "%I64X %hs");
}

TEST(MessageAsFormat, ConversionsAfterTheLastArgumentPrintAsThemselves)
{
    EXPECT_EQ(OrvMessageAsFormat("%d%d%d", 2), "%d%d%%d");
    EXPECT_EQ(OrvMessageAsFormat("%d%d%d", 1), "%d%%d%%d");
    EXPECT_EQ(OrvMessageAsFormat("%*.*d", 2), "%%*.*d");
    EXPECT_EQ(OrvMessageAsFormat("%*.*d", 3), "%*.*d");
}

TEST(MessageAsFormat, AConversionThatStoresIsRemoved)
{
    EXPECT_EQ(OrvMessageAsFormat("5% now", 4), "5ow");
    EXPECT_EQ(OrvMessageAsFormat("%n%lnx", 4), "x");
}

TEST(MessageAsFormat, ANulIsNotPartOfAConversion)
{
    const std::string nulAfterASign("a%\0d", 4);
    EXPECT_EQ(OrvMessageAsFormat(nulAfterASign, 0), std::string("a%%\0d", 5));
    EXPECT_EQ(OrvMessageAsFormat(nulAfterASign, 4), nulAfterASign);
}

TEST(MessageAsFormat, APercentSignAtTheEndStays)
{
    EXPECT_EQ(OrvMessageAsFormat("100%", 4), "100%");
    EXPECT_EQ(OrvMessageAsFormat("%l", 4), "%l");
}
