#include "OrvCharacters.h"

#include <gtest/gtest.h>

#include <string>

TEST(CharacterClasses, EveryByteBelongsToItsClassAndToNoOther)
{
    const std::string letters = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ";
    const std::string digits = "0123456789";
    const std::string symbols = " !\"#$%&'()*+,-./:;<=>?@[\\]^_`{|}~";
    for (int code = 0; code < 256; ++code) {
        const char c = static_cast<char>(code);
        EXPECT_EQ(OrvIsAlphabetic(c), letters.find(c) != std::string::npos) << code;
        EXPECT_EQ(OrvIsNumeric(c), digits.find(c) != std::string::npos) << code;
        EXPECT_EQ(OrvIsSymbolic(c), symbols.find(c) != std::string::npos) << code;
    }
}

TEST(CharacterClasses, HexadecimalDigitsAreThoseOfBothLetterCases)
{
    const std::string digits = "0123456789abcdefABCDEF";
    for (int code = 0; code < 256; ++code) {
        const char c = static_cast<char>(code);
        EXPECT_EQ(OrvIsHexadecimal(c), digits.find(c) != std::string::npos) << code;
    }
}

TEST(TextType, ATextIsOfATypeWhenNoClassItHoldsIsMissingFromTheMask)
{
    struct Row
    {
        const char* text;
        uint32_t held;
    };
    for (const Row row : {Row{"abc", 1}, Row{"123", 2}, Row{"-/", 4}, Row{"a1", 3}, Row{"a-", 5}, Row{"1-", 6},
                          Row{"a1-", 7}, Row{"", 0}, Row{"\t\x7f", 0}, Row{"a b", 5}}) {
        for (uint32_t allowed = 0; allowed < 8; ++allowed) {
            EXPECT_EQ(OrvIsTextOfType(row.text, allowed), (row.held & ~allowed) == 0) << row.text << ' ' << allowed;
        }
    }
}

TEST(TextType, ASpaceIsSymbolicAndSoNotAllowedAmongLetters)
{
    EXPECT_FALSE(OrvIsTextOfType("two words", 1));
}

TEST(TextType, BytesOfNoClassAreAllowedAmongLetters)
{
    EXPECT_TRUE(OrvIsTextOfType("caf\xE9", 1));
}

TEST(TextType, OtherBitsOfTheMaskAreIgnored)
{
    EXPECT_TRUE(OrvIsTextOfType("abc", 0xFFFFFFF9U));
    EXPECT_FALSE(OrvIsTextOfType("abc", 0xFFFFFFF8U));
}

TEST(TextType, TheEmptyTextIsHexadecimal)
{
    EXPECT_TRUE(OrvIsTextHexadecimal(""));
}

TEST(TextType, OneOtherCharacterMakesATextNotHexadecimal)
{
    EXPECT_TRUE(OrvIsTextHexadecimal("00aAfF99"));
    EXPECT_FALSE(OrvIsTextHexadecimal("00g"));
    EXPECT_FALSE(OrvIsTextHexadecimal("0x10"));
    EXPECT_FALSE(OrvIsTextHexadecimal(" 10"));
}
