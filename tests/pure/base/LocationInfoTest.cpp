#include "LocationInfo.h"

#include <gtest/gtest.h>

TEST(LocationInfo, NameWithADriveIsTheFullPath)
{
    std::string invokedDir = R"(C:\Work)";
    EXPECT_EQ(R"(E:\Kit\Morvix.exe)", FullProgramPath(R"(E:\Kit\Morvix.exe)", invokedDir));
    EXPECT_EQ(R"(C:\Work)", invokedDir);
}

TEST(LocationInfo, NameWithADoubleBackslashIsTheFullPath)
{
    std::string invokedDir = R"(C:\Work)";
    EXPECT_EQ(R"(\\server\share\Morvix.exe)", FullProgramPath(R"(\\server\share\Morvix.exe)", invokedDir));
    EXPECT_EQ(R"(C:\Work)", invokedDir);
}

TEST(LocationInfo, BareNameGetsTheCurrentDirectoryWhichGainsItsBackslash)
{
    std::string invokedDir = R"(C:\Work)";
    EXPECT_EQ(R"(C:\Work\Morvix.exe)", FullProgramPath("Morvix.exe", invokedDir));
    EXPECT_EQ(R"(C:\Work\)", invokedDir);
}

TEST(LocationInfo, RootDirectoryKeepsItsOneBackslash)
{
    std::string invokedDir = R"(C:\)";
    EXPECT_EQ(R"(C:\Morvix.exe)", FullProgramPath("Morvix.exe", invokedDir));
    EXPECT_EQ(R"(C:\)", invokedDir);
}

TEST(LocationInfo, SetupDirectoryEndsBeforeTheLastBackslash)
{
    EXPECT_EQ(R"(C:\Work)", DirectoryOf(R"(C:\Work\Morvix.exe)"));
    EXPECT_EQ("C:", DirectoryOf(R"(C:\Morvix.exe)"));
    EXPECT_EQ("Morvix.exe", DirectoryOf("Morvix.exe"));
    EXPECT_EQ("", DirectoryOf(""));
}
