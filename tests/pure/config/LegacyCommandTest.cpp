#include "LegacyCommand.h"

#include <gtest/gtest.h>

#include "../CodePages.h"

TEST(LegacyCommand, TheCommandLineNamesTheMatchedIdAndTheInf)
{
    EXPECT_EQ(LegacyCommandLine("VEN_5D1A&DEV_1A2B", "C:\\DRV\\NGEA.INF", NoLeadBytes),
              "Rundll.exe Inst98.dll,EntryPoint PCI\\VEN_5D1A&DEV_1A2B C:\\DRV\\NGEA.INF");
}

TEST(LegacyCommand, TheCommandLineStaysBelowAThousandCharacters)
{
    EXPECT_EQ(LegacyCommandLine(std::string(255, 'i'), std::string(255, 'p'), NoLeadBytes).size(),
              33U + 4 + 255 + 1 + 255);
    EXPECT_EQ(LegacyCommandLine(std::string(900, 'i'), std::string(900, 'p'), NoLeadBytes).size(), 999U);
}

TEST(LegacyCommand, TheProgramsDirectoryIsItsPathUpToTheLastBackslash)
{
    EXPECT_EQ(DriveAndDirectoryOf("C:\\Kit\\Setup\\Morvix.exe", NoLeadBytes), "C:\\Kit\\Setup\\");
    EXPECT_EQ(DriveAndDirectoryOf("Setup/Morvix.exe", NoLeadBytes), "Setup/");
    EXPECT_EQ(DriveAndDirectoryOf("C:Morvix.exe", NoLeadBytes), "C:");
    EXPECT_EQ(DriveAndDirectoryOf("C:", NoLeadBytes), "C:");
    EXPECT_EQ(DriveAndDirectoryOf("C", NoLeadBytes), "");
    EXPECT_EQ(DriveAndDirectoryOf("Morvix.exe", NoLeadBytes), "");
    EXPECT_EQ(DriveAndDirectoryOf("", NoLeadBytes), "");
    EXPECT_EQ(DriveAndDirectoryOf("\\Morvix.exe", NoLeadBytes), "\\");
}

TEST(LegacyCommand, PathsAreCutAtTheirLimit)
{
    EXPECT_EQ(CutToPathLimit(std::string(259, 'x'), NoLeadBytes), std::string(259, 'x'));
    EXPECT_EQ(CutToPathLimit(std::string(260, 'x'), NoLeadBytes), std::string(259, 'x'));
    EXPECT_EQ(DriveAndDirectoryOf(std::string(400, 'x') + "\\Morvix.exe", NoLeadBytes).size(), 259U);
}

TEST(LegacyCommand, StagingNamesNoDeviceAndTheCabDirectory)
{
    EXPECT_EQ(LegacyStagingCommandLine("C:\\WINDOWS\\INSTALL\\", NoLeadBytes),
              "Rundll.exe Inst98.dll,EntryPoint noID C:\\WINDOWS\\INSTALL\\");
    EXPECT_EQ(LegacyStagingCommandLine(std::string(2000, 'x'), NoLeadBytes).size(), 999U);
}

TEST(LegacyCommand, ASecondByteThatLooksLikeABackslashEndsNoDirectory)
{
    for (const CodePage& page : kBackslashCodePages) {
        const std::string letter(page.letter);
        EXPECT_EQ(DriveAndDirectoryOf("C:\\" + letter + "\\" + letter + ".exe", page.isLeadByte),
                  "C:\\" + letter + "\\")
            << page.number;
        EXPECT_EQ(DriveAndDirectoryOf("C:" + letter + ".exe", page.isLeadByte), "C:") << page.number;
        EXPECT_EQ(DriveAndDirectoryOf("Kit/" + letter + ".exe", page.isLeadByte), "Kit/") << page.number;
    }
}

TEST(LegacyCommand, NoCutSplitsACharacter)
{
    for (const CodePage& page : kCodePages) {
        const std::string letter(page.letter);
        const std::string path = std::string(258, 'x') + letter;
        EXPECT_EQ(CutToPathLimit(path, page.isLeadByte), std::string(258, 'x')) << page.number;
        EXPECT_EQ(CutToPathLimit(path.substr(1), page.isLeadByte), path.substr(1)) << page.number;
        EXPECT_EQ(DriveAndDirectoryOf(path + "\\x", page.isLeadByte), std::string(258, 'x')) << page.number;
        // 998 bytes, and then a character of which one byte would fit.
        const std::string line = LegacyCommandLine(std::string(900, 'i'), std::string(60, 'p') + letter, NoLeadBytes);
        ASSERT_EQ(line.size(), 999U);
        EXPECT_EQ(LegacyCommandLine(std::string(900, 'i'), std::string(60, 'p') + letter, page.isLeadByte),
                  line.substr(0, 998))
            << page.number;
        EXPECT_EQ(LegacyStagingCommandLine(std::string(960, 'p') + letter, page.isLeadByte).back(), 'p') << page.number;
        EXPECT_EQ(LegacyStagingCommandLine(std::string(960, 'p') + letter, page.isLeadByte).size(), 998U)
            << page.number;
    }
}
