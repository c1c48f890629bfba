#include "PathResolution.h"

#include <gtest/gtest.h>

#include "../CodePages.h"

namespace {
std::string Resolve(const std::string& path, const std::string& setupDir, int levels,
                    LeadByteTest isLeadByte = NoLeadBytes)
{
    return WithTrailingBackslash(ResolveRelativePath(path, setupDir, levels, isLeadByte), isLeadByte);
}
} // namespace

TEST(PathResolution, ALeadingFullStopNamesTheBaseAndTheRestIsDropped)
{
    EXPECT_EQ(Resolve(R"(..\Drivers)", R"(E:\Kit\Setup)", 0), R"(E:\Kit\Setup\)");
    EXPECT_EQ(Resolve(R"(.\drivers)", R"(E:\Kit\Setup)", 1), R"(E:\Kit\)");
    EXPECT_EQ(Resolve(".", R"(E:\Kit\Setup)", 0), R"(E:\Kit\Setup\)");
    EXPECT_EQ(Resolve(".hidden", R"(E:\Kit)", 0), R"(E:\Kit\)");
}

TEST(PathResolution, ALeadingBackslashMeansTheDriveOfTheBase)
{
    EXPECT_EQ(Resolve(R"(\Drivers\Net)", R"(E:\Kit\Setup)", 0), R"(E:\Drivers\Net\)");
    EXPECT_EQ(Resolve(R"(\Drivers\Net)", R"(E:\Kit\Setup)", 2), R"(E:\Drivers\Net\)");
    EXPECT_EQ(Resolve(R"(\)", R"(E:\Kit\Setup)", 0), R"(E:\)");
}

TEST(PathResolution, AnythingElseIsBelowTheBase)
{
    EXPECT_EQ(Resolve(R"(Drv\Winx64)", R"(E:\Kit\Setup\Bin)", 2), R"(E:\Kit\Drv\Winx64\)");
    EXPECT_EQ(Resolve(R"(Drv\Winx64\)", R"(E:\Kit)", 0), R"(E:\Kit\Drv\Winx64\)");
    EXPECT_EQ(Resolve("Drv", R"(E:\)", 0), R"(E:\Drv\)");
    EXPECT_EQ(Resolve("/Drv", R"(E:\Kit)", 0), R"(E:\Kit\/Drv\)");
}

TEST(PathResolution, LevelsOutsideOneTo260LeaveTheBaseAtTheProgramsDirectory)
{
    for (const int levels : {0, -1, -2147483647 - 1, 261, 2147483647}) {
        EXPECT_EQ(Resolve("Drv", R"(E:\Kit\Setup)", levels), R"(E:\Kit\Setup\Drv\)") << levels;
    }
}

TEST(PathResolution, LevelsTheBaseDoesNotHaveAreIgnored)
{
    EXPECT_EQ(Resolve("Drv", R"(E:\Kit\Setup)", 2), R"(E:\Drv\)");
    EXPECT_EQ(Resolve("Drv", R"(E:\Kit\Setup)", 3), R"(E:\Drv\)");
    EXPECT_EQ(Resolve("Drv", R"(E:\Kit\Setup)", 260), R"(E:\Drv\)");
    EXPECT_EQ(Resolve("Drv", "Kit", 1), R"(Kit\Drv\)");
}

TEST(PathResolution, ShortBasesAndPathsHaveDefinedResults)
{
    EXPECT_EQ(ResolveRelativePath("", R"(E:\Kit)", 0, NoLeadBytes), R"(E:\Kit\)");
    EXPECT_EQ(ResolveRelativePath("", "", 0, NoLeadBytes), R"(\)");
    EXPECT_EQ(ResolveRelativePath("Drv", "", 1, NoLeadBytes), R"(\Drv)");
    EXPECT_EQ(ResolveRelativePath(R"(\Drv)", "", 0, NoLeadBytes), R"(\Drv)");
    EXPECT_EQ(ResolveRelativePath(R"(\Drv)", "E", 0, NoLeadBytes), R"(E\Drv)");
    EXPECT_EQ(ResolveRelativePath(R"(\Drv)", R"(\\server\share)", 0, NoLeadBytes), R"(\\\Drv)");
    EXPECT_EQ(ResolveRelativePath(".", "", 0, NoLeadBytes), "");
    EXPECT_EQ(ResolveRelativePath("x", R"(\)", 1, NoLeadBytes), R"(\x)");
}

TEST(PathResolution, AColonAnywhereMakesAPathAbsolute)
{
    EXPECT_TRUE(IsAbsolutePath(R"(E:\Extra\Win7x64)"));
    EXPECT_TRUE(IsAbsolutePath("Drv:stream"));
    EXPECT_TRUE(IsAbsolutePath(":"));
    EXPECT_FALSE(IsAbsolutePath(R"(\\server\share)"));
    EXPECT_FALSE(IsAbsolutePath(""));
}

TEST(PathResolution, ATrailingBackslashIsAddedOnce)
{
    EXPECT_EQ(WithTrailingBackslash(R"(E:\Kit)", NoLeadBytes), R"(E:\Kit\)");
    EXPECT_EQ(WithTrailingBackslash(R"(E:\Kit\)", NoLeadBytes), R"(E:\Kit\)");
    EXPECT_EQ(WithTrailingBackslash("", NoLeadBytes), R"(\)");
    EXPECT_EQ(WithTrailingBackslash("E:/Kit/", NoLeadBytes), R"(E:/Kit/\)");
}

TEST(PathResolution, ABaseNameEndsAtTheLastFullStop)
{
    EXPECT_EQ(BaseNameOf("tav1.inf"), "tav1");
    EXPECT_EQ(BaseNameOf("tav1.old.INF"), "tav1.old");
    EXPECT_EQ(BaseNameOf("tav1"), "tav1");
    EXPECT_EQ(BaseNameOf(".inf"), "");
    EXPECT_EQ(BaseNameOf(""), "");
}

TEST(PathResolution, ASecondByteThatLooksLikeABackslashIsNotOne)
{
    // 0x83 0x5C is one character; 0x5C alone is a backslash.
    EXPECT_EQ(WithTrailingBackslash("E:\\Kit\x83\\", IsJapaneseLeadByte), "E:\\Kit\x83\\\\");
    EXPECT_EQ(WithTrailingBackslash("E:\\Kit\x83\\\\", IsJapaneseLeadByte), "E:\\Kit\x83\\\\");
    EXPECT_EQ(WithTrailingBackslash("E:\\Kit\x83", IsJapaneseLeadByte), "E:\\Kit\x83\\") << "a torn character";
    EXPECT_EQ(Resolve("Drv", "E:\\Kit\\\x83\\Setup", 1, IsJapaneseLeadByte), "E:\\Kit\\Drv\\");
    EXPECT_EQ(Resolve("Drv", "E:\\Kit\\\x83\\Setup", 0, IsJapaneseLeadByte), "E:\\Kit\\\x83\\Setup\\Drv\\");
}
