#include "SourceFiles.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <string>

#include "ScratchDirectory.h"

namespace {
/// A kit of one INF in a directory of its own. The disk is number 1.
class SourceFiles : public testing::Test
{
protected:
    /// @param copy   The text after "CopyFiles=".
    /// @param more   Further sections.
    /// @param disk   The text after "1=".
    void WriteInf(const std::string& copy, const std::string& more, const std::string& disk = "disk")
    {
        WriteFileBytes(m_kit.At("kit.inf"),
                       "[Version]\r\nSignature=\"$Windows NT$\"\r\nClass=Net\r\n[Install]\r\nCopyFiles=" + copy +
                           "\r\n[SourceDisksNames]\r\n1=" + disk + "\r\n" + more + "\r\n");
    }
    void Lay(const std::string& file) const { WriteFileBytes(m_kit.At(file), "driver"); }
    [[nodiscard]] uint32_t Check() const { return CheckSourceFiles(m_kit.At("kit.inf").c_str(), "Install"); }

private:
    ScratchDirectory m_kit;
};

constexpr uint32_t kMissing = ERROR_FILE_NOT_FOUND;
} // namespace

TEST_F(SourceFiles, AFileNamedInTheCopyLineItselfIsLookedFor)
{
    WriteInf("@one.sys", "[SourceDisksFiles]\r\none.sys=1");
    EXPECT_EQ(Check(), kMissing);
    Lay("one.sys");
    EXPECT_EQ(Check(), 0u);
}

TEST_F(SourceFiles, EveryFileOfEverySectionOfEveryCopyLineIsLookedFor)
{
    WriteInf("First,Second\r\nCopyFiles=Third",
             "[First]\r\na.sys\r\n[Second]\r\nb.sys\r\nc.sys\r\n[Third]\r\nd.sys\r\n"
             "[SourceDisksFiles]\r\na.sys=1\r\nb.sys=1\r\nc.sys=1\r\nd.sys=1");
    for (const char* const file : {"a.sys", "b.sys", "c.sys", "d.sys"}) {
        EXPECT_EQ(Check(), kMissing) << "before " << file;
        Lay(file);
    }
    EXPECT_EQ(Check(), 0u);
}

TEST_F(SourceFiles, AnEmptyFieldIsPassedOver)
{
    WriteInf(",Files", "[Files]\r\na.sys\r\n[SourceDisksFiles]\r\na.sys=1");
    EXPECT_EQ(Check(), kMissing);
    Lay("a.sys");
    EXPECT_EQ(Check(), 0u);
}

TEST_F(SourceFiles, TheNameAtTheSourceCountsWhereItDiffers)
{
    WriteInf("Files", "[Files]\r\nonsystem.sys,onkit.sys\r\n[SourceDisksFiles]\r\nonkit.sys=1\r\nonsystem.sys=1");
    Lay("onsystem.sys");
    EXPECT_EQ(Check(), kMissing);
    Lay("onkit.sys");
    EXPECT_EQ(Check(), 0u);
}

TEST_F(SourceFiles, ACompressedFileCountsAsTheFile)
{
    WriteInf("@one.sys", "[SourceDisksFiles]\r\none.sys=1");
    Lay("one.sy_");
    EXPECT_EQ(Check(), 0u);
}

TEST_F(SourceFiles, TheProcessorsOwnPlaceWins)
{
    WriteInf("@one.sys", "[SourceDisksFiles]\r\none.sys=1\r\n[SourceDisksFiles.amd64]\r\none.sys=1,x64");
    Lay("one.sys");
    EXPECT_EQ(Check(), kMissing);
    Lay("x64\\one.sys");
    EXPECT_EQ(Check(), 0u);
}

TEST_F(SourceFiles, TheDisksDirectoryAndTheFilesAreJoinedByOneBackslash)
{
    WriteInf("@one.sys", "[SourceDisksFiles]\r\none.sys=1,\\below", "disk,,,\\disk1");
    EXPECT_EQ(Check(), kMissing);
    Lay("disk1\\below\\one.sys");
    EXPECT_EQ(Check(), 0u);
}

TEST_F(SourceFiles, WhatLiesInACabinetOrOnADiskWithATagFileIsNotLookedFor)
{
    WriteInf("@one.sys", "[SourceDisksFiles]\r\none.sys=1", "disk,kit.cab");
    EXPECT_EQ(Check(), 0u);
}

TEST_F(SourceFiles, AFileWithoutADiskIsNotLookedFor)
{
    WriteInf("@one.sys", "[SourceDisksFiles]\r\nother.sys=1");
    EXPECT_EQ(Check(), 0u);
}

TEST_F(SourceFiles, AnInfThatCannotBeOpenedIsAnsweredWithThePlatformsReason)
{
    EXPECT_EQ(CheckSourceFiles("C:\\there\\is\\none.inf", "Install"), static_cast<uint32_t>(ERROR_PATH_NOT_FOUND));
}
