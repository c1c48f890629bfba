#include "IniLines.h"

#include <gmock/gmock.h>

#include <string>

using testing::ElementsAre;
using testing::IsEmpty;
using namespace std::string_literals;

namespace {
// Of exactly the size of the text, so that the address sanitizer sees any step beyond it.
std::vector<char> Buffer(const std::string& bytes)
{
    return {bytes.begin(), bytes.end()};
}

std::vector<std::string> Lines(const std::string& bytes)
{
    const std::vector<char> buffer = Buffer(bytes);
    std::vector<std::string> copies;
    for (const std::string_view line : LinesOf(buffer)) {
        copies.emplace_back(line);
    }
    return copies;
}
} // namespace

TEST(LinesOf, ReadsUpToTheEmptyLine)
{
    EXPECT_THAT(Lines("a=1\0b=2\0\0c=3\0\0"s), ElementsAre("a=1", "b=2"));
}

TEST(LinesOf, AnEmptyListOrBufferHasNoLines)
{
    EXPECT_THAT(Lines(""s), IsEmpty());
    EXPECT_THAT(Lines("\0"s), IsEmpty());
    EXPECT_THAT(Lines("\0a\0\0"s), IsEmpty());
}

TEST(LinesOf, AListWithoutItsEndStopsWithTheBuffer)
{
    EXPECT_THAT(Lines("a=1\0b=2\0"s), ElementsAre("a=1", "b=2"));
    EXPECT_THAT(Lines("a=1\0b=2"s), ElementsAre("a=1", "b=2"));
    EXPECT_THAT(Lines("a"s), ElementsAre("a"));
}

TEST(LinesOf, LinesMayHoldAnyByte)
{
    EXPECT_THAT(Lines("\xFF\xFE\x01\0\n\0\0"s), ElementsAre("\xFF\xFE\x01", "\n"));
}

TEST(ValueAfterLast, IsEverythingAfterTheMarker)
{
    EXPECT_EQ(ValueAfterLast("InfDir=Drv\\Winxp32", "InfDir="), "Drv\\Winxp32");
    EXPECT_EQ(ValueAfterLast("InfDir=a=b", "InfDir="), "a=b");
    EXPECT_EQ(ValueAfterLast("InfDir=", "InfDir="), "");
}

TEST(ValueAfterLast, TheLastOccurrenceCounts)
{
    EXPECT_EQ(ValueAfterLast("InfDir=one InfDir=two", "InfDir="), "two");
    EXPECT_EQ(ValueAfterLast("Comment=see InfDir=Drv", "InfDir="), "Drv");
    EXPECT_EQ(ValueAfterLast("OldInfDir=Drv", "InfDir="), "Drv");
}

TEST(ValueAfterLast, LinesThatAreTooShortOrSpelledOtherwiseHaveNone)
{
    EXPECT_FALSE(ValueAfterLast("InfDir", "InfDir="));
    EXPECT_FALSE(ValueAfterLast("", "InfDir="));
    EXPECT_FALSE(ValueAfterLast("InfDi=x", "InfDir="));
    EXPECT_FALSE(ValueAfterLast("INFDIR=Drv\\Winxp32", "InfDir="));
    EXPECT_FALSE(ValueAfterLast("InfDir =Drv", "InfDir="));
}

TEST(SplitFromEnd, NamesComeInReverseOrder)
{
    EXPECT_THAT(SplitFromEnd("A,B,C"), ElementsAre("C", "B", "A"));
    EXPECT_THAT(SplitFromEnd("Norda.NTamd64,Norda.NTamd64.6.0"), ElementsAre("Norda.NTamd64.6.0", "Norda.NTamd64"));
}

TEST(SplitFromEnd, AnEmptyListIsOneEmptyName)
{
    EXPECT_THAT(SplitFromEnd(""), ElementsAre(""));
}

TEST(SplitFromEnd, BlanksAndEmptyPartsAreKept)
{
    EXPECT_THAT(SplitFromEnd("A , B"), ElementsAre(" B", "A "));
    EXPECT_THAT(SplitFromEnd(",A,,B,"), ElementsAre("", "B", "", "A", ""));
    EXPECT_THAT(SplitFromEnd(","), ElementsAre("", ""));
}

TEST(LeadingNumber, ReadsLeadingDigits)
{
    EXPECT_EQ(LeadingNumber("0"), 0);
    EXPECT_EQ(LeadingNumber("2"), 2);
    EXPECT_EQ(LeadingNumber("260"), 260);
    EXPECT_EQ(LeadingNumber("007"), 7);
    EXPECT_EQ(LeadingNumber("3levels"), 3);
    EXPECT_EQ(LeadingNumber(" 4"), 4);
    EXPECT_EQ(LeadingNumber("\t5 6"), 5);
    EXPECT_EQ(LeadingNumber("+6"), 6);
    EXPECT_EQ(LeadingNumber("-1"), -1);
}

TEST(LeadingNumber, AnythingElseCountsZero)
{
    for (const char* const text : {"", " ", "two", "x2", "-", "+", "--1", "+-1", "- 1", "0x10", ".5"}) {
        EXPECT_EQ(LeadingNumber(text), 0) << text;
    }
}

TEST(LeadingNumber, NumbersOutOfRangeGiveTheNearest)
{
    EXPECT_EQ(LeadingNumber("2147483647"), 2147483647);
    EXPECT_EQ(LeadingNumber("2147483648"), 2147483647);
    EXPECT_EQ(LeadingNumber("99999999999999999999999999"), 2147483647);
    EXPECT_EQ(LeadingNumber("-2147483648"), -2147483647 - 1);
    EXPECT_EQ(LeadingNumber("-99999999999999999999999999"), -2147483647 - 1);
}
