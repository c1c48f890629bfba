#include "MachinePaths.h"

#include <gtest/gtest.h>

#include "KitOnDisk.h"

namespace {
class MachinePathsTest : public testing::Test
{
protected:
    MachinePathsTest()
    {
        m_folder.Write("Rel/Kit/Setup/Morvix.ini", "");
        m_folder.Write("Rel/Kit/Drv/a.inf", "");
        m_folder.Write("Rel/Common/b.inf", "");
        m_folder.Write("Elsewhere/c.inf", "");
    }

    [[nodiscard]] MachinePaths Paths(std::vector<FolderMap> maps = {}) const
    {
        return {m_folder.Path() / "Rel/Kit/Setup", R"(D:\Rel\Kit\Setup)", std::move(maps)};
    }
    [[nodiscard]] std::string Find(const MachinePaths& paths, std::string_view path) const
    {
        const auto found = paths.Find(path);
        return found ? found->lexically_relative(m_folder.Path()).generic_string() : "<missing>";
    }

    TestFolder m_folder;
};
} // namespace

TEST_F(MachinePathsTest, TheFoldersAboveTheKitAreTheOnesAboveTheSetupDirectory)
{
    const MachinePaths paths = Paths();
    EXPECT_EQ("Rel/Kit/Setup/Morvix.ini", Find(paths, R"(D:\Rel\Kit\Setup\Morvix.ini)"));
    EXPECT_EQ("Rel/Kit/Drv/a.inf", Find(paths, R"(D:\Rel\Kit\Drv\a.inf)"));
    EXPECT_EQ("Rel/Common/b.inf", Find(paths, R"(D:\Rel\Common\b.inf)"));
    EXPECT_EQ("Elsewhere/c.inf", Find(paths, R"(D:\Elsewhere\c.inf)"));
}

TEST_F(MachinePathsTest, LetterCaseDoesNotCount)
{
    EXPECT_EQ("Rel/Kit/Drv/a.inf", Find(Paths(), R"(d:\REL\kit\DRV\A.INF)"));
}

TEST_F(MachinePathsTest, AMapTellsOfOtherDrivesAndTheLongestNameDecides)
{
    const MachinePaths paths = Paths({{"E:\\", m_folder.Path() / "Elsewhere"},
                                      {R"(D:\Rel\Common)", m_folder.Path() / "Elsewhere"},
                                      {R"(\\server\share)", m_folder.Path() / "Rel"}});
    EXPECT_EQ("Elsewhere/c.inf", Find(paths, R"(E:\c.inf)"));
    EXPECT_EQ("Elsewhere/c.inf", Find(paths, R"(D:\Rel\Common\c.inf)"));
    EXPECT_EQ("<missing>", Find(paths, R"(D:\Rel\Common\b.inf)"));
    EXPECT_EQ("Rel/Common/b.inf", Find(paths, R"(\\server\share\Common\b.inf)"));
}

TEST_F(MachinePathsTest, WhatNoFolderCoversIsNotKnown)
{
    EXPECT_FALSE(Paths().IsCovered(R"(E:\Drv\)"));
    EXPECT_FALSE(Paths().IsCovered(R"(Drv)"));
    EXPECT_TRUE(Paths().IsCovered(R"(D:\Other)"));
    EXPECT_EQ("<missing>", Find(Paths(), R"(E:\c.inf)"));
    // A name that only begins alike is another folder.
    EXPECT_EQ("<missing>", Find(Paths(), R"(D:\Rel\Kit\SetupOld\Morvix.ini)"));
}

TEST_F(MachinePathsTest, UsersKnowAFileByItsPlaceInTheKit)
{
    EXPECT_EQ("Drv/a.inf", Paths().NameOf(R"(D:\Rel\Kit\Setup\Drv\a.inf)"));
    EXPECT_EQ("Drv", Paths().NameOf(R"(D:\Rel\Kit\Setup\Drv\)"));
    EXPECT_EQ(".", Paths().NameOf(R"(D:\Rel\Kit\Setup\)"));
    EXPECT_EQ(R"(D:\Rel\Kit\Drv\a.inf)", Paths().NameOf(R"(D:\Rel\Kit\Drv\a.inf)"));
}

TEST(AssumedSetupDir, IsDeepEnoughForTheLevelsOfTheKit)
{
    EXPECT_EQ(R"(C:\Kit)", AssumedSetupDir(0));
    EXPECT_EQ(R"(C:\Kit)", AssumedSetupDir(1));
    EXPECT_EQ(R"(C:\Kit)", AssumedSetupDir(-5));
    EXPECT_EQ(R"(C:\Above2\Above1\Kit)", AssumedSetupDir(3));
}
