#include "TwoByteText.h"

#include <gtest/gtest.h>

#include <string>

#include "../CodePages.h"

TEST(TwoByteText, ASecondByteIsNeverTheLastBackslash)
{
    for (const CodePage& page : kBackslashCodePages) {
        const std::string letter(page.letter);
        EXPECT_EQ(LastBackslash("\\" + letter + "x", page.isLeadByte), 0U) << page.number;
        EXPECT_EQ(LastBackslash("\\" + letter + "\\x", page.isLeadByte), 3U) << page.number;
        EXPECT_EQ(LastBackslash(letter, page.isLeadByte), std::string_view::npos) << page.number;
    }
    EXPECT_EQ(LastBackslash("\\\x83\\x", NoLeadBytes), 2U) << "in a code page without such characters";
    EXPECT_EQ(LastBackslash("", NoLeadBytes), std::string_view::npos);
}

TEST(TwoByteText, ASecondByteIsNotABackslashAtTheEnd)
{
    for (const CodePage& page : kBackslashCodePages) {
        const std::string letter(page.letter);
        EXPECT_FALSE(EndsWithBackslash("C:\\Kit" + letter, page.isLeadByte)) << page.number;
        EXPECT_TRUE(EndsWithBackslash("C:\\Kit" + letter + "\\", page.isLeadByte)) << page.number;
    }
    EXPECT_FALSE(EndsWithBackslash("", NoLeadBytes));
    EXPECT_TRUE(EndsWithBackslash("\\", NoLeadBytes));
}

TEST(TwoByteText, ASecondByteAndABackslashAreNotADoubleBackslash)
{
    for (const CodePage& page : kBackslashCodePages) {
        const std::string letter(page.letter);
        EXPECT_FALSE(HasDoubleBackslash(letter + "\\x", page.isLeadByte)) << page.number;
        EXPECT_TRUE(HasDoubleBackslash(letter + R"(\\x)", page.isLeadByte)) << page.number;
        EXPECT_TRUE(HasDoubleBackslash(R"(\\server\)" + letter, page.isLeadByte)) << page.number;
    }
    EXPECT_FALSE(HasDoubleBackslash("", NoLeadBytes));
    EXPECT_FALSE(HasDoubleBackslash(R"(\a\)", NoLeadBytes));
}

TEST(TwoByteText, ACutNeverSplitsACharacter)
{
    for (const CodePage& page : kCodePages) {
        const std::string letter(page.letter);
        EXPECT_EQ(CutToBytes(letter + "b", 1, page.isLeadByte), "") << page.number;
        EXPECT_EQ(CutToBytes("a" + letter + "b", 1, page.isLeadByte), "a") << page.number;
        EXPECT_EQ(CutToBytes("a" + letter + "b", 2, page.isLeadByte), "a") << page.number;
        EXPECT_EQ(CutToBytes("a" + letter + "b", 3, page.isLeadByte), "a" + letter) << page.number;
        EXPECT_EQ(CutToBytes("a" + letter + "b", 4, page.isLeadByte), "a" + letter + "b") << page.number;
        EXPECT_EQ(CutToBytes(letter + letter, 3, page.isLeadByte), letter) << page.number;
        EXPECT_EQ(CutToBytes(letter, 1, page.isLeadByte), "") << page.number;
        EXPECT_EQ(CutToBytes(letter, 0, page.isLeadByte), "") << page.number;
    }
    EXPECT_EQ(CutToBytes("abc", 2, NoLeadBytes), "ab");
    EXPECT_EQ(CutToBytes("", 0, NoLeadBytes), "");
}

TEST(TwoByteText, ACutNeverSplitsACharacterOfUtf8)
{
    // Of one, two, three and four bytes.
    const std::string text = "a\u00E4\u8A2D\U0001F5A7";
    constexpr std::array kKept = std::to_array<std::size_t>({0, 1, 1, 3, 3, 3, 6, 6, 6, 6, 10, 10});
    for (std::size_t maxBytes = 0; maxBytes < kKept.size(); ++maxBytes) {
        EXPECT_EQ(CutToBytes(text, maxBytes, CharacterRule::Utf8()), text.substr(0, kKept[maxBytes])) << maxBytes;
    }
}

TEST(TwoByteText, BytesThatAreNoUtf8AreCharactersOfTheirOwn)
{
    constexpr auto kRule = CharacterRule::Utf8();
    // A continuation without a start, bytes that start nothing, and starts that are not continued.
    for (const char* text : {"\x80x", "\xC0x", "\xC1x", "\xF5x", "\xFFx", "\xC3x", "\xE8x", "\xF0x", "\xC3\xC3"}) {
        EXPECT_EQ(kRule.FirstCharacterBytes(text), 1U) << text;
    }
    EXPECT_EQ(kRule.FirstCharacterBytes("\xE8\xA8"), 2U) << "the text ends inside the character";
    EXPECT_EQ(kRule.FirstCharacterBytes("\xF0\x9F\x96x"), 3U);
    EXPECT_EQ(CutToBytes("\xE8\xE8\xA8\xAD", 3, kRule), "\xE8");
}

TEST(TwoByteText, ALeadByteWithoutItsSecondOneCountsAsACharacter)
{
    EXPECT_EQ(CutToBytes("a\x83", 2, IsJapaneseLeadByte), "a\x83");
    EXPECT_EQ(CutToBytes("a\x83", 1, IsJapaneseLeadByte), "a");
    EXPECT_EQ(LastBackslash("\\\x83", IsJapaneseLeadByte), 0U);
}
