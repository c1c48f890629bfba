#include "OrvText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <limits>

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(TrimText, OnlySpacesAreTrimmed)
{
    EXPECT_EQ(OrvTrimLeft("  a b  "), "a b  ");
    EXPECT_EQ(OrvTrimRight("  a b  "), "  a b");
    EXPECT_EQ(OrvTrimLeft("\t a"), "\t a");
    EXPECT_EQ(OrvTrimRight("a \r\n"), "a \r\n");
    EXPECT_EQ(OrvTrimLeft(" \ta"), "\ta");
}

TEST(TrimText, ATextOfSpacesBecomesEmpty)
{
    EXPECT_EQ(OrvTrimLeft("   "), "");
    EXPECT_EQ(OrvTrimRight("   "), "");
    EXPECT_EQ(OrvTrimLeft(""), "");
    EXPECT_EQ(OrvTrimRight(""), "");
}

TEST(SplitText, TheEmptyTextAndATextWithoutSeparatorGiveNoParts)
{
    EXPECT_THAT(OrvSplitText("", ','), IsEmpty());
    EXPECT_THAT(OrvSplitText("abc", ','), IsEmpty());
}

TEST(SplitText, PartsAreTheTextsBetweenSeparators)
{
    EXPECT_THAT(OrvSplitText("a,b,c", ','), ElementsAre("a", "b", "c"));
}

TEST(SplitText, TwoSeparatorsInARowGiveAnEmptyPart)
{
    EXPECT_THAT(OrvSplitText("a,,b", ','), ElementsAre("a", "", "b"));
}

TEST(SplitText, ALeadingSeparatorGivesAnEmptyFirstPart)
{
    EXPECT_THAT(OrvSplitText(",a", ','), ElementsAre("", "a"));
}

TEST(SplitText, ATrailingSeparatorAddsNoLastPart)
{
    EXPECT_THAT(OrvSplitText("a,", ','), ElementsAre("a"));
    EXPECT_THAT(OrvSplitText("a,,", ','), ElementsAre("a", ""));
    EXPECT_THAT(OrvSplitText(",", ','), ElementsAre(""));
}

TEST(DecimalText, NineCharactersFit)
{
    std::array<char, kOrvDecimalBytes> text{};
    for (const int32_t value : {0, 7, -1, 42, 999999999, -99999999}) {
        text.fill('x');
        EXPECT_TRUE(OrvDecimalText(value, text)) << value;
        EXPECT_EQ(std::string(text.data()), std::to_string(value));
    }
}

TEST(DecimalText, TenCharactersOrMoreAreRefusedWithAnEmptyText)
{
    for (const int32_t value :
         {1000000000, -100000000, std::numeric_limits<int32_t>::max(), std::numeric_limits<int32_t>::min()}) {
        std::array<char, kOrvDecimalBytes> text{'x'};
        EXPECT_FALSE(OrvDecimalText(value, text)) << value;
        EXPECT_STREQ(text.data(), "");
    }
}
