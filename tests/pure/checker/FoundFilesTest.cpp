#include "FoundFiles.h"

#include <gtest/gtest.h>

#include <array>

#include "KitOnDisk.h"

namespace {
class FoundFilesTest : public testing::Test
{
protected:
    FoundFilesTest()
    {
        m_folder.Write("Drv/ngea.inf", "x");
        m_folder.Write("Drv/x64/NGEA.sys", "x");
        m_folder.Write("Drv/x64/ngea.sys", "x");
        m_folder.Write("Elsewhere/nxga.sys", "x");
    }

    [[nodiscard]] std::string Find(const std::string& path)
    {
        const auto& found = m_files.Find(path);
        return found ? found->lexically_relative(m_folder.Path()).generic_string() : "<missing>";
    }

    TestFolder m_folder;
    MachinePaths m_paths{m_folder.Path(), kSetupDir, {{R"(E:\)", m_folder.Path() / "Elsewhere"}}};
    FoundFiles m_files{m_paths};
};
} // namespace

TEST_F(FoundFilesTest, FindsWhatTheMachinesPathsFind)
{
    constexpr auto kPaths = std::to_array<const char*>({
        R"(C:\Kit\Drv\ngea.inf)",
        R"(c:\KIT\drv\NGEA.INF)",
        R"(C:\Kit\Drv\x64\ngea.sys)",
        R"(C:\Kit\Drv\x64\NGEA.sys)",
        R"(C:\Kit\Drv\x64\Ngea.Sys)",
        R"(C:\Kit\Drv\.\x64\ngea.sys)",
        R"(C:\Kit\Drv\x64/ngea.sys)",
        R"(C:\Kit\Drv\x64\..\ngea.inf)",
        R"(C:\Kit\Drv)",
        R"(C:\Kit\Drv\)",
        R"(C:\Kit\Drv\..)",
        R"(C:\Kit\Drv\.)",
        R"(E:\nxga.sys)",
        R"(E:\NXGA.SYS)",
        R"(C:\Kit\Drv\ngea.in)",
        R"(C:\Kit\Drv\ngea.infx)",
        R"(C:\Kit\Other\ngea.inf)",
        R"(F:\nxga.sys)",
        "ngea.inf",
        "",
    });
    for (const char* const path : kPaths) {
        const auto expected = m_paths.Find(path);
        const auto& found = m_files.Find(path);
        EXPECT_EQ(expected.has_value(), found.has_value()) << path;
        if (expected && found) {
            EXPECT_TRUE(std::filesystem::equivalent(*expected, *found)) << path;
        }
    }
    EXPECT_EQ("Drv/x64/NGEA.sys", Find(R"(C:\Kit\Drv\x64\NGEA.sys)"));
    EXPECT_EQ("Drv/x64/ngea.sys", Find(R"(C:\Kit\Drv\x64\ngea.sys)"));
    EXPECT_EQ("<missing>", Find(R"(C:\Kit\Drv\ngea.in)"));
}

TEST_F(FoundFilesTest, AFolderIsListedOnce)
{
    EXPECT_EQ("<missing>", Find(R"(C:\Kit\Drv\late.sys)"));
    m_folder.Write("Drv/late.sys", "x");
    m_folder.Write("Drv/later.sys", "x");
    EXPECT_EQ("<missing>", Find(R"(C:\Kit\Drv\late.sys)"));
    EXPECT_EQ("<missing>", Find(R"(C:\Kit\Drv\later.sys)"));
    EXPECT_EQ(
        "Drv/later.sys",
        FoundFiles(m_paths).Find(R"(C:\Kit\Drv\later.sys)")->lexically_relative(m_folder.Path()).generic_string());
}
