#include "LegacyCommand.h"

#include <gtest/gtest.h>

TEST(LegacyCommand, TheCommandLineNamesTheMatchedIdAndTheInf)
{
    EXPECT_EQ(LegacyCommandLine("VEN_5D1A&DEV_1A2B", "C:\\DRV\\NGEA.INF"),
              "Rundll.exe Inst98.dll,EntryPoint PCI\\VEN_5D1A&DEV_1A2B C:\\DRV\\NGEA.INF");
}

TEST(LegacyCommand, TheCommandLineStaysBelowAThousandCharacters)
{
    EXPECT_EQ(LegacyCommandLine(std::string(255, 'i'), std::string(255, 'p')).size(), 33U + 4 + 255 + 1 + 255);
    EXPECT_EQ(LegacyCommandLine(std::string(900, 'i'), std::string(900, 'p')).size(), 999U);
}

TEST(LegacyCommand, TheProgramsDirectoryIsItsPathUpToTheLastBackslash)
{
    EXPECT_EQ(DriveAndDirectoryOf("C:\\Kit\\Setup\\Morvix.exe"), "C:\\Kit\\Setup\\");
    EXPECT_EQ(DriveAndDirectoryOf("Setup/Morvix.exe"), "Setup/");
    EXPECT_EQ(DriveAndDirectoryOf("C:Morvix.exe"), "C:");
    EXPECT_EQ(DriveAndDirectoryOf("C:"), "C:");
    EXPECT_EQ(DriveAndDirectoryOf("C"), "");
    EXPECT_EQ(DriveAndDirectoryOf("Morvix.exe"), "");
    EXPECT_EQ(DriveAndDirectoryOf(""), "");
    EXPECT_EQ(DriveAndDirectoryOf("\\Morvix.exe"), "\\");
}

TEST(LegacyCommand, PathsAreCutAtTheirLimit)
{
    EXPECT_EQ(CutToPathLimit(std::string(259, 'x')), std::string(259, 'x'));
    EXPECT_EQ(CutToPathLimit(std::string(260, 'x')), std::string(259, 'x'));
    EXPECT_EQ(DriveAndDirectoryOf(std::string(400, 'x') + "\\Morvix.exe").size(), 259U);
}

TEST(LegacyCommand, StagingNamesNoDeviceAndTheCabDirectory)
{
    EXPECT_EQ(LegacyStagingCommandLine("C:\\WINDOWS\\INSTALL\\"),
              "Rundll.exe Inst98.dll,EntryPoint noID C:\\WINDOWS\\INSTALL\\");
    EXPECT_EQ(LegacyStagingCommandLine(std::string(2000, 'x')).size(), 999U);
}
