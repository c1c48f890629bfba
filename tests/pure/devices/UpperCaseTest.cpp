#include "UpperCase.h"

#include <gtest/gtest.h>

#include <string>

#include "../CodePages.h"

namespace {
std::string Upper(std::string text, LeadByteTest isLeadByte = NoLeadBytes)
{
    MakeUpperCase(text, isLeadByte);
    return text;
}
} // namespace

TEST(UpperCase, LettersOfAToZAreRaisedAndAllElseStays)
{
    EXPECT_EQ(Upper("c:\\Drv\\ngea_64.inf {~`@[}"), "C:\\DRV\\NGEA_64.INF {~`@[}");
    EXPECT_EQ(Upper("azAZ09"), "AZAZ09");
    EXPECT_EQ(Upper("\xE9\xFC\xDF"), "\xE9\xFC\xDF");
    EXPECT_EQ(Upper(""), "");
}

TEST(UpperCase, TheSecondByteOfATwoByteCharacterStays)
{
    EXPECT_EQ(Upper("a\x83\x61z", IsJapaneseLeadByte), "A\x83\x61Z");
    EXPECT_EQ(Upper("\x83\x83\x61", IsJapaneseLeadByte), "\x83\x83\x41");
    EXPECT_EQ(Upper("a\x83", IsJapaneseLeadByte), "A\x83");
}

TEST(UpperCase, TheTextEndsAtItsTerminatorOrWithItsBuffer)
{
    EXPECT_EQ(Upper(std::string("ab\0cd", 5)), std::string("AB\0cd", 5));
    char unterminated[3] = {'a', 'b', 'c'};
    MakeUpperCase(unterminated, NoLeadBytes);
    EXPECT_EQ(std::string(unterminated, 3), "ABC");
}
