#include "LanguageTable.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <string>

namespace {
struct Row
{
    uint16_t systemLanguage;
    std::string_view code3;
    uint16_t id;
};

constexpr std::array kRows = std::to_array<Row>({
    {0x0804, "CHS", 0x0804}, {0x1004, "CHS", 0x1004}, {0x0404, "CHT", 0x0404}, {0x0C04, "CHT", 0x0C04},
    {0x1404, "CHT", 0x1404}, {0x0004, "", 0},         {0x1804, "", 0},         {0x0407, "DEU", 1031},
    {0x0807, "DEU", 1031},   {0x0409, "ENU", 1033},   {0x0809, "ENU", 1033},   {0x040A, "ESN", 3082},
    {0x0C0A, "ESN", 3082},   {0x080A, "ESN", 3082},   {0x040C, "FRA", 1036},   {0x0C0C, "FRA", 1036},
    {0x0410, "ITA", 1040},   {0x0810, "ITA", 1040},   {0x0411, "JPN", 0x0411}, {0x0412, "KOR", 0x0412},
    {0x0416, "PTB", 1046},   {0x0816, "PTB", 1046},   {0x0415, "", 0},         {0x0419, "", 0},
    {0x0000, "", 0},         {0xFFFF, "", 0},
});
} // namespace

TEST(LanguageTable, EverySystemLanguageLeadsToItsTexts)
{
    for (const Row& row : kRows) {
        const RunLanguage language = LanguageForSystem(row.systemLanguage);
        EXPECT_EQ(row.code3, language.code3) << std::hex << row.systemLanguage;
        EXPECT_EQ(row.id, language.id) << std::hex << row.systemLanguage;
    }
}

TEST(LanguageTable, UnsupportedLanguagesFallBackToUsEnglish)
{
    EXPECT_EQ(1033, RunLanguageIdFor(LanguageForSystem(0x0419).id));
    EXPECT_EQ(1031, RunLanguageIdFor(LanguageForSystem(0x0807).id));
    EXPECT_EQ("ENU", LanguageForSystem(kFallbackLanguage).code3);
}

TEST(LanguageTable, PrimaryLanguageHasTenBits)
{
    // The low eight bits of these are those of Chinese and German.
    EXPECT_EQ("", LanguageForSystem(0x0504).code3);
    EXPECT_EQ("", LanguageForSystem(0x0107).code3);
    EXPECT_EQ(0, LanguageForSystem(0x0107).id);
}

TEST(LanguageAnswer, GivesCodeAndIdentifierOfEachLanguage)
{
    for (const Row& row : kRows) {
        std::array<char, 260> code{};
        code.fill('x');
        EXPECT_EQ(LanguageAnswer(row.systemLanguage, code.data(), 260), row.id) << std::hex << row.systemLanguage;
        EXPECT_EQ(std::string(code.data()), row.code3) << std::hex << row.systemLanguage;
        EXPECT_TRUE(std::all_of(code.begin() + 3, code.end(), [](char c) { return c == '\0'; }));
    }
}

TEST(LanguageAnswer, AskedWithoutABufferGivesTheIdentifierAlone)
{
    for (const int size : {0, 3, 260}) {
        EXPECT_EQ(LanguageAnswer(0x0807, nullptr, size), 1031) << size;
        EXPECT_EQ(LanguageAnswer(0x0419, nullptr, size), 0) << size;
    }
}

TEST(LanguageAnswer, GivesTheSystemsOwnIdentifierWhenTheCodeDoesNotFit)
{
    for (const int size : {3, 1, 0, -1}) {
        std::array<char, 4> code{'x', 'x', 'x', 'x'};
        EXPECT_EQ(LanguageAnswer(0x0807, code.data(), size), 0x0807) << size;
        for (int index = 0; index < 4; ++index) {
            EXPECT_EQ(code[static_cast<std::size_t>(index)], index < size ? '\0' : 'x') << size;
        }
    }
}

TEST(LanguageAnswer, FillsABufferOfExactlyFour)
{
    std::array<char, 5> code{'x', 'x', 'x', 'x', 'x'};
    EXPECT_EQ(LanguageAnswer(0x0807, code.data(), 4), 1031);
    EXPECT_STREQ(code.data(), "DEU");
    EXPECT_EQ(code[4], 'x');
}
