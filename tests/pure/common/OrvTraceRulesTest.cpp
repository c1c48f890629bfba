#include "OrvTraceRules.h"

#include <gtest/gtest.h>

#include <string>

#include "../CodePages.h"

TEST(TraceLevels, EachLevelWritesWhatItsRowSays)
{
    struct Row
    {
        uint32_t level;
        bool print;
        bool error;
        bool debugger;
        bool registry;
        uint32_t errorLineLevel;
    };
    for (const Row row : {
             Row{0, false, false, false, false, 1},
             Row{1, true, true, false, true, 1},
             Row{2, false, true, false, true, 1},
             Row{3, true, true, false, false, 1},
             Row{4, true, true, true, false, 4},
             Row{5, true, true, false, false, 1},
             Row{0xFFFFFFFF, true, true, false, false, 1},
         }) {
        EXPECT_EQ(OrvPrintWrites(row.level), row.print) << row.level;
        EXPECT_EQ(OrvErrorWrites(row.level), row.error) << row.level;
        EXPECT_EQ(OrvMirrorsToDebugger(row.level), row.debugger) << row.level;
        EXPECT_EQ(OrvConsultsRegistry(row.level), row.registry) << row.level;
        EXPECT_EQ(OrvErrorLineLevel(row.level), row.errorLineLevel) << row.level;
    }
}

TEST(LogFileName, OneTo245CharactersAreAllowed)
{
    EXPECT_FALSE(OrvIsLogFileName(nullptr));
    EXPECT_FALSE(OrvIsLogFileName(""));
    EXPECT_TRUE(OrvIsLogFileName("a"));
    EXPECT_TRUE(OrvIsLogFileName(std::string(245, 'a').c_str()));
    EXPECT_FALSE(OrvIsLogFileName(std::string(246, 'a').c_str()));
}

TEST(LogDirectory, ComesFromTheRegistryUnlessTheKeyIsMissingOrTheModuleSetsUp)
{
    EXPECT_EQ(OrvChooseLogDirectory(false, false, true), OrvLogDirectory::InstalledDir);
    EXPECT_EQ(OrvChooseLogDirectory(false, false, false), OrvLogDirectory::Temp);
    EXPECT_EQ(OrvChooseLogDirectory(false, true, true), OrvLogDirectory::Temp);
    EXPECT_EQ(OrvChooseLogDirectory(false, true, false), OrvLogDirectory::Temp);
}

TEST(LogDirectory, APlainFileNameHasNone)
{
    EXPECT_EQ(OrvChooseLogDirectory(true, false, true), OrvLogDirectory::None);
    EXPECT_EQ(OrvChooseLogDirectory(true, false, false), OrvLogDirectory::None);
}

TEST(LogFallback, KeepsTheNameWithItsBackslash)
{
    EXPECT_STREQ(OrvNameWithBackslash(R"(C:\dir\name.log)", NoLeadBytes), R"(\name.log)");
    EXPECT_STREQ(OrvNameWithBackslash(R"(C:\dir\)", NoLeadBytes), R"(\)");
    EXPECT_EQ(OrvNameWithBackslash("name.log", NoLeadBytes), nullptr);
}

TEST(LogFallback, TakesNoSecondByteForTheBackslash)
{
    for (const CodePage& page : kBackslashCodePages) {
        const std::string letter(page.letter);
        const std::string path = "C:\\dir\\" + letter + ".log";
        EXPECT_EQ(OrvNameWithBackslash(path.c_str(), page.isLeadByte), "\\" + letter + ".log") << page.number;
        EXPECT_EQ(OrvNameWithBackslash((letter + ".log").c_str(), page.isLeadByte), nullptr) << page.number;
    }
}
