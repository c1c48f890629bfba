#include "CharacterRule.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>

namespace {
bool FromHex81(unsigned char byte)
{
    return byte >= 0x81;
}

struct FirstCharacter
{
    CharacterRule rule;
    std::string text;
    std::size_t bytes;
    const char* what;
};

void PrintTo(const FirstCharacter& row, std::ostream* out)
{
    *out << row.what;
}

class FirstCharacterOf : public testing::TestWithParam<FirstCharacter>
{
};
} // namespace

TEST_P(FirstCharacterOf, HasTheBytesOfItsEncoding)
{
    EXPECT_EQ(GetParam().rule.FirstCharacterBytes(GetParam().text), GetParam().bytes);
}

namespace {
const CharacterRule kTwoBytes = FromHex81;
const CharacterRule kUtf8 = CharacterRule::Utf8();
} // namespace

INSTANTIATE_TEST_SUITE_P(TwoByteCodePage, FirstCharacterOf,
                         testing::Values(FirstCharacter{kTwoBytes, "ab", 1, "a letter"},
                                         FirstCharacter{kTwoBytes, "\x81 b", 2, "a lead byte and its second"},
                                         FirstCharacter{kTwoBytes, "\x81", 1, "a lead byte alone"}));

INSTANTIATE_TEST_SUITE_P(Utf8, FirstCharacterOf,
                         testing::Values(FirstCharacter{kUtf8, "\x7F\x80\x80\x80", 1, "the last of one byte"},
                                         FirstCharacter{kUtf8, "\x80\x80\x80\x80", 1, "a continuation"},
                                         FirstCharacter{kUtf8, "\xC1\x80\x80\x80", 1, "a start that is never used"},
                                         FirstCharacter{kUtf8, "\xC2\x80\x80\x80", 2, "the first start of two"},
                                         FirstCharacter{kUtf8, "\xDF\x80\x80\x80", 2, "the last start of two"},
                                         FirstCharacter{kUtf8, "\xE0\x80\x80\x80", 3, "the first start of three"},
                                         FirstCharacter{kUtf8, "\xEF\x80\x80\x80", 3, "the last start of three"},
                                         FirstCharacter{kUtf8, "\xF0\x80\x80\x80\x80", 4, "the first start of four"},
                                         FirstCharacter{kUtf8, "\xF4\x80\x80\x80\x80", 4, "the last start of four"},
                                         FirstCharacter{kUtf8, "\xF5\x80\x80\x80\x80", 1, "a start after the last"},
                                         FirstCharacter{kUtf8, "\xE2\x82", 2, "cut after two of three"},
                                         FirstCharacter{kUtf8, "\xE2", 1, "cut after one of three"},
                                         FirstCharacter{kUtf8, "\xE2\xBF\x7F", 2, "no continuation after two"},
                                         FirstCharacter{kUtf8, "\xE2\xC0\x80", 1, "no continuation after one"}));
