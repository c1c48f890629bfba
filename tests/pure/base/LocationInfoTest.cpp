#include "LocationInfo.h"

#include <gtest/gtest.h>

#include "../CodePages.h"

TEST(LocationInfo, NameWithADriveIsTheFullPath)
{
    std::string invokedDir = R"(C:\Work)";
    EXPECT_EQ(R"(E:\Kit\Morvix.exe)", FullProgramPath(R"(E:\Kit\Morvix.exe)", invokedDir, NoLeadBytes));
    EXPECT_EQ(R"(C:\Work)", invokedDir);
}

TEST(LocationInfo, NameWithADoubleBackslashIsTheFullPath)
{
    std::string invokedDir = R"(C:\Work)";
    EXPECT_EQ(R"(\\server\share\Morvix.exe)", FullProgramPath(R"(\\server\share\Morvix.exe)", invokedDir, NoLeadBytes));
    EXPECT_EQ(R"(C:\Work)", invokedDir);
}

TEST(LocationInfo, BareNameGetsTheCurrentDirectoryWhichGainsItsBackslash)
{
    std::string invokedDir = R"(C:\Work)";
    EXPECT_EQ(R"(C:\Work\Morvix.exe)", FullProgramPath("Morvix.exe", invokedDir, NoLeadBytes));
    EXPECT_EQ(R"(C:\Work\)", invokedDir);
}

TEST(LocationInfo, RootDirectoryKeepsItsOneBackslash)
{
    std::string invokedDir = R"(C:\)";
    EXPECT_EQ(R"(C:\Morvix.exe)", FullProgramPath("Morvix.exe", invokedDir, NoLeadBytes));
    EXPECT_EQ(R"(C:\)", invokedDir);
}

TEST(LocationInfo, SetupDirectoryEndsBeforeTheLastBackslash)
{
    EXPECT_EQ(R"(C:\Work)", DirectoryOf(R"(C:\Work\Morvix.exe)", NoLeadBytes));
    EXPECT_EQ("C:", DirectoryOf(R"(C:\Morvix.exe)", NoLeadBytes));
    EXPECT_EQ("Morvix.exe", DirectoryOf("Morvix.exe", NoLeadBytes));
    EXPECT_EQ("", DirectoryOf("", NoLeadBytes));
}

TEST(LocationInfo, SecondByteThatLooksLikeABackslashIsNotOne)
{
    for (const CodePage& page : kBackslashCodePages) {
        const std::string letter(page.letter);
        std::string invokedDir = "C:\\" + letter;
        const std::string name = letter + "\\Morvix.exe";
        EXPECT_EQ("C:\\" + letter + "\\" + name, FullProgramPath(name, invokedDir, page.isLeadByte))
            << page.number << ": neither a backslash at the end of the directory nor two of them in the name";
        EXPECT_EQ("C:\\" + letter + "\\", invokedDir) << page.number;
        EXPECT_EQ("C:\\" + letter, DirectoryOf("C:\\" + letter + "\\" + letter + ".exe", page.isLeadByte))
            << page.number;
        EXPECT_EQ(letter + ".exe", DirectoryOf(letter + ".exe", page.isLeadByte)) << page.number;
    }
}
