#include "FileNames.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>

#include "FolderListing.h"

using testing::ElementsAre;
using testing::Eq;
using testing::Optional;

TEST(FileNames, ThePatternAlsoFindsNamesByTheirShortNames)
{
    for (const char* const name : {"a.inf", "A.INF", "a.infx", "a.inf~", "a.b.inf", ".inf", "a.inf_old"}) {
        EXPECT_TRUE(MatchesInfPattern(name)) << name;
    }
    for (const char* const name : {"a.in", "a.inx", "inf", "a.inf.bak", "ainf", ""}) {
        EXPECT_FALSE(MatchesInfPattern(name)) << name;
    }
}

TEST(FileNames, AListingIsInTheOrderOfUpperCasedNames)
{
    EXPECT_THAT(ListInfNames({"b.inf", "A.inf", "a_.inf", "aB.inf", "x.txt", "B1.infx"}),
                ElementsAre("A.inf", "aB.inf", "a_.inf", "b.inf", "B1.infx"));
}

TEST(FileNames, TheExactNameIsPreferredAndThenTheFirstInAnotherCase)
{
    EXPECT_THAT(FindFileName({"a.inf", "A.inf"}, "A.inf"), Optional(Eq("A.inf")));
    EXPECT_THAT(FindFileName({"aB.inf", "Ab.inf"}, "AB.INF"), Optional(Eq("Ab.inf")));
    EXPECT_EQ(FindFileName({"a.inf"}, "b.inf"), std::nullopt);
}

TEST(FolderListing, APathIsFoundWhateverItsLettersAndSeparators)
{
    std::string pattern = (std::filesystem::temp_directory_path() / "profiles-XXXXXX").string();
    const std::filesystem::path folder = mkdtemp(pattern.data());
    std::filesystem::create_directories(folder / "Drv" / "Win7x64");
    std::ofstream(folder / "Drv" / "Win7x64" / "Nge.inf", std::ios::binary) << "[Version]\r\n";
    EXPECT_THAT(FindPath(folder, R"(drv\WIN7X64\nge.INF)"), Optional(Eq(folder / "Drv" / "Win7x64" / "Nge.inf")));
    EXPECT_THAT(FindPath(folder, "Drv/Win7x64/"), Optional(Eq(folder / "Drv" / "Win7x64")));
    EXPECT_EQ(FindPath(folder, R"(Drv\none)"), std::nullopt);
    std::error_code error;
    EXPECT_THAT(ReadFileBytes(folder / "Drv" / "Win7x64" / "Nge.inf", error), Optional(Eq("[Version]\r\n")));
    EXPECT_FALSE(error);
    EXPECT_EQ(ReadFileBytes(folder / "Drv", error), std::nullopt);
    EXPECT_EQ(error, std::errc::is_a_directory);
    EXPECT_EQ(ReadFileBytes(folder / "none", error), std::nullopt);
    EXPECT_EQ(error, std::errc::no_such_file_or_directory);
    EXPECT_THAT(NamesIn(folder), ElementsAre("Drv"));
    EXPECT_THAT(NamesIn(folder / "none"), ElementsAre());
    std::filesystem::remove_all(folder);
}
