#include "SourceFiles.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <string>
#include <vector>

#include "ScratchDirectory.h"
#include "SetupApi.h"

namespace {
struct SourceRow
{
    const char* name;
    std::string copyFiles;
    std::string sections;
    std::string disk = "disk";            ///< the line of disk 1
    std::vector<std::string> others = {}; ///< in the kit from the beginning
    std::vector<std::string> needed = {}; ///< the check fails until the last of them is there
};

class SourceFiles : public testing::TestWithParam<SourceRow>
{
};
} // namespace

TEST_P(SourceFiles, AreMissingUntilTheLastOneThatIsNeededIsThere)
{
    const SourceRow& row = GetParam();
    const ScratchDirectory kit;
    const std::string inf = kit.At("kit.inf");
    WriteFileBytes(inf, "[Version]\r\nSignature=\"$Windows NT$\"\r\nClass=Net\r\n[Install]\r\nCopyFiles=" +
                            row.copyFiles + "\r\n[SourceDisksNames]\r\n1=" + row.disk + "\r\n" + row.sections + "\r\n");
    for (const std::string& file : row.others) {
        WriteFileBytes(kit.At(file), "driver");
    }
    for (const std::string& file : row.needed) {
        EXPECT_EQ(CheckSourceFiles(SetupApi(), inf.c_str(), "Install"), static_cast<uint32_t>(ERROR_FILE_NOT_FOUND))
            << "before " << file;
        WriteFileBytes(kit.At(file), "driver");
    }
    EXPECT_EQ(CheckSourceFiles(SetupApi(), inf.c_str(), "Install"), 0u);
}

INSTANTIATE_TEST_SUITE_P(
    Each, SourceFiles,
    testing::Values(
        SourceRow{.name = "AFileNamedInTheCopyLineItself",
                  .copyFiles = "@one.sys",
                  .sections = "[SourceDisksFiles]\r\none.sys=1",
                  .needed = {"one.sys"}},
        SourceRow{.name = "EveryFileOfEverySectionOfEveryCopyLine",
                  .copyFiles = "First,Second\r\nCopyFiles=Third",
                  .sections = "[First]\r\na.sys\r\n[Second]\r\nb.sys\r\nc.sys\r\n[Third]\r\nd.sys\r\n"
                              "[SourceDisksFiles]\r\na.sys=1\r\nb.sys=1\r\nc.sys=1\r\nd.sys=1",
                  .needed = {"a.sys", "b.sys", "c.sys", "d.sys"}},
        SourceRow{.name = "NotAnEmptyField",
                  .copyFiles = ",Files",
                  .sections = "[Files]\r\na.sys\r\n[SourceDisksFiles]\r\na.sys=1",
                  .needed = {"a.sys"}},
        SourceRow{
            .name = "ByTheirNameInTheKit",
            .copyFiles = "Files",
            .sections = "[Files]\r\nonsystem.sys,onkit.sys\r\n[SourceDisksFiles]\r\nonkit.sys=1\r\nonsystem.sys=1",
            .others = {"onsystem.sys"},
            .needed = {"onkit.sys"}},
        SourceRow{.name = "NotIfCompressed",
                  .copyFiles = "@one.sys",
                  .sections = "[SourceDisksFiles]\r\none.sys=1",
                  .others = {"one.sy_"}},
        SourceRow{.name = "InTheDirectoryOfTheProcessor",
                  .copyFiles = "@one.sys",
                  .sections = "[SourceDisksFiles]\r\none.sys=1\r\n[SourceDisksFiles.amd64]\r\none.sys=1,x64",
                  .others = {"one.sys"},
                  .needed = {"x64\\one.sys"}},
        SourceRow{.name = "InTheDisksDirectoryAndTheFilesJoinedByOneBackslash",
                  .copyFiles = "@one.sys",
                  .sections = "[SourceDisksFiles]\r\none.sys=1,\\below",
                  .disk = "disk,,,\\disk1",
                  .needed = {"disk1\\below\\one.sys"}},
        SourceRow{.name = "NotInACabinetOrOnADiskWithATagFile",
                  .copyFiles = "@one.sys",
                  .sections = "[SourceDisksFiles]\r\none.sys=1",
                  .disk = "disk,kit.cab"},
        SourceRow{
            .name = "NotAFileWithoutADisk", .copyFiles = "@one.sys", .sections = "[SourceDisksFiles]\r\nother.sys=1"}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(SourceFilesOfNoInf, FailWithThePlatformsReason)
{
    EXPECT_EQ(CheckSourceFiles(SetupApi(), "C:\\there\\is\\none.inf", "Install"),
              static_cast<uint32_t>(ERROR_PATH_NOT_FOUND));
}
