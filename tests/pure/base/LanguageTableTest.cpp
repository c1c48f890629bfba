#include "LanguageTable.h"

#include <gtest/gtest.h>

#include <array>

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
