#include <gmock/gmock.h>

#include <algorithm>

#include "DebugOutput.h"
#include "InfSearch.h"
#include "LocationInfo.h"
#include "OSVersion.h"
#include "ScratchDirectory.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {
class InfDirs : public testing::Test
{
protected:
    InfDirs() { LocationInfo.setupDir = m_directory.At("Setup"); }
    ~InfDirs() override { LocationInfo = {}; }

    ScratchDirectory m_directory;
};
} // namespace

TEST_F(InfDirs, DirectoriesAndExcludesOfASystemComeFromItsSection)
{
    WriteFileBytes(m_directory.At(R"(Setup\Morvix.ini)"),
                   "[Win732E]\r\nInfDir=E:\\A\r\nInfDir=Drv\r\nInfExclude=x.inf\r\n[Win732]\r\nInfDir=E:\\Other\r\n");
    std::vector<std::string> directories;
    std::vector<std::string> excludes;
    TraceCapture trace;
    GetInfDirsFor(osWINSEVEN32E, directories, excludes);
    const std::string below = m_directory.At(R"(Setup\Drv\)");
    EXPECT_THAT(directories, ElementsAre(R"(E:\A\)", below));
    EXPECT_THAT(excludes, ElementsAre("x.inf"));
    EXPECT_THAT(
        trace.Messages(),
        ElementsAre("Entering - GetInfDirs", "reading ini file for candidate directories\n", "osWINSEVEN32E detected\n",
                    "Entering - ReadInfDirsFromIni", "Entering - ResolvePah", "Entering - ResolvePah",
                    "Entering - GetLevelsToRootFromINI", "Entering - ReadInfExcludeFilesFromINI",
                    "INFs to exclude:", "x.inf", R"(infdirs: [E:\A\] [)" + below + "] \n"));
}

TEST_F(InfDirs, AnUnsupportedSystemHasNoDirectories)
{
    for (uint32_t code = 0; code <= 6; ++code) {
        std::vector<std::string> directories;
        std::vector<std::string> excludes;
        TraceCapture trace;
        GetInfDirsFor(static_cast<OSCode>(code), directories, excludes);
        EXPECT_THAT(directories, IsEmpty());
        EXPECT_THAT(excludes, IsEmpty());
        EXPECT_THAT(trace.Messages(),
                    ElementsAre("Entering - GetInfDirs", "reading ini file for candidate directories\n",
                                "unsupported os detected\n", "infdirs: \n"));
    }
}

TEST_F(InfDirs, EverySystemTracesItsDetectionLineAndReadsItsSection)
{
    std::string content;
    for (const SystemRow& row : kSystems) {
        if (IsServed(row.code) && row.code != osWINEIGHTSRV32E) {
            const std::string number = std::to_string(row.code);
            content +=
                "[" + std::string(row.sectionKey) + "]\r\nInfDir=X:\\" + number + "\r\nInfExclude=" + number + "\r\n";
        }
    }
    WriteFileBytes(m_directory.At(R"(Setup\Morvix.ini)"), content);
    for (uint32_t code = 7; code <= 24; ++code) {
        std::vector<std::string> directories;
        std::vector<std::string> excludes;
        TraceCapture trace;
        GetInfDirsFor(static_cast<OSCode>(code), directories, excludes);
        const std::string number = std::to_string(std::min(code, 23U));
        EXPECT_THAT(directories, ElementsAre("X:\\" + number + "\\"));
        EXPECT_THAT(excludes, ElementsAre(number));
        EXPECT_EQ(trace.Messages().at(2), RowOf(static_cast<OSCode>(code)).detectionLine);
    }
}

TEST_F(InfDirs, DirectoriesOfTheRunningSystemAreAppended)
{
    WriteFileBytes(
        m_directory.At(R"(Setup\Morvix.ini)"),
        "[" + std::string(RowOf(COSVersion().GetOSCode()).sectionKey) + "]\r\nInfDir=E:\\B\r\nInfExclude=y.inf\r\n");
    std::vector<std::string> directories{"E:\\A\\"};
    std::vector<std::string> excludes{"x.inf"};
    TraceCapture trace;
    GetInfDirs(directories, excludes);
    EXPECT_THAT(directories, ElementsAre("E:\\A\\", "E:\\B\\"));
    EXPECT_THAT(excludes, ElementsAre("x.inf", "y.inf"));
    EXPECT_EQ(trace.Messages().at(2), RowOf(COSVersion().GetOSCode()).detectionLine);
    EXPECT_EQ(trace.Messages().back(), "infdirs: [E:\\A\\] [E:\\B\\] \n");
}
