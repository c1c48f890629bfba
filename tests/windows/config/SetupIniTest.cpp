#include "SetupIni.h"

#include <gmock/gmock.h>
#include <windows.h>

#include "CallCount.h"
#include "DebugOutput.h"
#include "LocationInfo.h"
#include "OSVersion.h"
#include "ScratchDirectory.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {
class SetupIni : public testing::Test
{
protected:
    SetupIni() { LocationInfo.setupDir = Base() + R"(\Setup\Bin)"; }
    ~SetupIni() override { LocationInfo = {}; }

    [[nodiscard]] std::string Base() const { return m_directory.Path(); }
    void WriteIni(const std::string& content) { WriteFileBytes(SetupIniPath(), content); }

    std::vector<std::string> DirsOf(const std::string& section)
    {
        std::vector<std::string> dirs;
        ReadInfDirsFromIni(section, dirs);
        return dirs;
    }

    std::vector<std::string> ExcludesOf(const std::string& section)
    {
        std::vector<std::string> excludes;
        ReadInfExcludeFilesFromINI(section, excludes);
        return excludes;
    }

    std::vector<std::string> NamesFor(OSCode system)
    {
        std::vector<std::string> names;
        GetINFSectionNamesFor(system, names);
        return names;
    }

private:
    ScratchDirectory m_directory;
};

/// `count` lines InfDir=X:\<number padded to `width`>, each of 10 + width characters with its line end.
std::string DirectoryLines(int count, std::size_t width)
{
    std::string lines;
    for (int index = 0; index < count; ++index) {
        const std::string number = std::to_string(index);
        lines += "InfDir=X:\\" + std::string(width - number.size(), '0') + number + "\r\n";
    }
    return lines;
}
} // namespace

TEST_F(SetupIni, IsInTheProgramsDirectory)
{
    EXPECT_EQ(SetupIniPath(), Base() + R"(\Setup\Bin\Morvix.ini)");
}

TEST_F(SetupIni, LevelsToRootIsReadFromConfig)
{
    WriteIni("[Config]\r\nLevelsToRoot=2\r\n");
    TraceCapture trace;
    EXPECT_EQ(GetLevelsToRootFromINI(), 2);
    EXPECT_THAT(trace.Messages(), ElementsAre("Entering - GetLevelsToRootFromINI"));
}

TEST_F(SetupIni, LevelsToRootIsZeroWhenMissing)
{
    EXPECT_EQ(GetLevelsToRootFromINI(), 0) << "no file";
    WriteIni("[Config]\r\nOther=2\r\n[Other]\r\nLevelsToRoot=2\r\n");
    EXPECT_EQ(GetLevelsToRootFromINI(), 0) << "no key";
}

TEST_F(SetupIni, LevelsToRootIsReadInto260Characters)
{
    WriteIni("[Config]\r\nLevelsToRoot=" + std::string(257, '0') + "12\r\n");
    EXPECT_EQ(GetLevelsToRootFromINI(), 12) << "259 characters and their terminator";
    WriteIni("[Config]\r\nLevelsToRoot=" + std::string(258, '0') + "12\r\n");
    EXPECT_EQ(GetLevelsToRootFromINI(), 1) << "the last digit is cut";
}

TEST_F(SetupIni, TheSectionNamesAreReadBeforeEveryReadOfASection)
{
    // The second read of the first section is the one with the greater buffer.
    WriteIni("[Dirs]\r\n" + DirectoryLines(20, 20) + "[Excludes]\r\nInfExclude=one.inf\r\n");
    const CallCount names("GetPrivateProfileStringA");
    const CallCount sections("GetPrivateProfileSectionA");
    ExcludesOf("Excludes");
    EXPECT_EQ(sections.Calls(), 1U);
    EXPECT_EQ(names.Calls(), 1U);
    EXPECT_GT(DirsOf("Dirs").size(), 10U);
    EXPECT_EQ(sections.Calls(), 3U);
    EXPECT_EQ(names.Calls(), 3U);
    EXPECT_EQ(DirsOf("Missing"), std::vector<std::string>());
    EXPECT_EQ(sections.Calls(), 4U);
    EXPECT_EQ(names.Calls(), 4U);
}

TEST_F(SetupIni, SectionAndKeyNamesIgnoreLetterCase)
{
    WriteIni("[CONFIG]\r\nlevelstoroot= 1 \r\n");
    EXPECT_EQ(GetLevelsToRootFromINI(), 1);
}

TEST_F(SetupIni, LevelsThatAreNotANumberFrom1To260LeaveTheBaseAtTheProgramsDirectory)
{
    for (const char* const levels : {"0", "-1", "two", "261", "", "99999999999"}) {
        WriteIni(std::string("[Config]\r\nLevelsToRoot=") + levels + "\r\n");
        EXPECT_EQ(ResolvePah("Drv", true), Base() + R"(\Setup\Bin\Drv\)") << levels;
    }
}

TEST_F(SetupIni, ResolvePahAsksForTheLevelsOnlyForPathsWithoutAColon)
{
    WriteIni("[Config]\r\nLevelsToRoot=2\r\n");
    TraceCapture trace;
    EXPECT_EQ(ResolvePah(R"(E:\Extra)", true), R"(E:\Extra\)");
    EXPECT_EQ(ResolvePah(R"(E:\Extra)", false), R"(E:\Extra)");
    EXPECT_THAT(trace.Messages(), ElementsAre("Entering - ResolvePah", "Entering - ResolvePah"));
    trace.Clear();
    EXPECT_EQ(ResolvePah(R"(Drv\Winx64)", true), Base() + R"(\Drv\Winx64\)");
    EXPECT_EQ(ResolvePah(R"(Drv\Winx64)", false), Base() + R"(\Drv\Winx64)");
    EXPECT_THAT(trace.Messages(), ElementsAre("Entering - ResolvePah", "Entering - GetLevelsToRootFromINI",
                                              "Entering - ResolvePah", "Entering - GetLevelsToRootFromINI"));
}

TEST_F(SetupIni, ResolvePahKeepsDriveAndBaseRules)
{
    WriteIni("[Config]\r\nLevelsToRoot=1\r\n");
    EXPECT_EQ(ResolvePah(R"(..\Drivers)", true), Base() + R"(\Setup\)");
    EXPECT_EQ(ResolvePah(R"(\Drivers\Net)", true), Base().substr(0, 2) + R"(\Drivers\Net\)");
}

TEST_F(SetupIni, ResolvePahIsDefinedWithoutAProgramDirectory)
{
    LocationInfo.setupDir.clear();
    EXPECT_EQ(ResolvePah(R"(\Drv)", true), R"(\Drv\)");
    EXPECT_EQ(ResolvePah(".", true), R"(\)");
    EXPECT_EQ(ResolvePah("", false), R"(\)");
}

TEST_F(SetupIni, InfDirLinesAreResolvedInFileOrder)
{
    WriteIni(
        "[Config]\r\nLevelsToRoot=1\r\n"
        "[Win732E]\r\nInfSectionName=Norda.NTamd64.6.1\r\nInfDir=Drv\\Win7x64\r\nInfExclude=a.inf\r\n"
        "; InfDir=Comment\r\nInfDir=E:\\Extra\\Win7x64\r\n"
        "[Win732]\r\nInfDir=Drv\\Win7\r\n");
    TraceCapture trace;
    EXPECT_THAT(DirsOf("Win732E"), ElementsAre(Base() + R"(\Setup\Drv\Win7x64\)", R"(E:\Extra\Win7x64\)"));
    EXPECT_THAT(trace.Messages(), ElementsAre("Entering - ReadInfDirsFromIni", "Entering - ResolvePah",
                                              "Entering - GetLevelsToRootFromINI", "Entering - ResolvePah"));
}

TEST_F(SetupIni, InfDirDirectoriesAreAppended)
{
    WriteIni("[Win732E]\r\nInfDir=E:\\B\r\n");
    std::vector<std::string> dirs{"E:\\A\\"};
    ReadInfDirsFromIni("Win732E", dirs);
    EXPECT_THAT(dirs, ElementsAre("E:\\A\\", "E:\\B\\"));
}

TEST_F(SetupIni, LinesWithoutTheInfDirMarkerAreSkipped)
{
    WriteIni(
        "[Win732E]\r\nx\r\nInfDi=1\r\ninfdir=E:\\lower\r\nInfDir\r\nNote=see InfDir=E:\\note\r\nOldInfDir=E:\\old\r\n");
    TraceCapture trace;
    EXPECT_THAT(DirsOf("Win732E"), ElementsAre(R"(E:\note\)", R"(E:\old\)"));
    EXPECT_THAT(trace.Messages(),
                ElementsAre("Entering - ReadInfDirsFromIni", "Entering - ResolvePah", "Entering - ResolvePah"));
}

TEST_F(SetupIni, AnEmptyInfDirNamesTheBase)
{
    WriteIni("[Win732E]\r\nInfDir=\r\n");
    EXPECT_THAT(DirsOf("Win732E"), ElementsAre(Base() + R"(\Setup\Bin\)"));
}

TEST_F(SetupIni, AMissingSectionOrFileHasNoDirectoriesAndIsTraced)
{
    TraceCapture trace;
    EXPECT_THAT(DirsOf("Win732E"), IsEmpty());
    WriteIni("[Win732]\r\nInfDir=Drv\r\n");
    EXPECT_THAT(DirsOf("Win732E"), IsEmpty());
    EXPECT_THAT(trace.Messages(), ElementsAre("Entering - ReadInfDirsFromIni", "GetPrivateProfileSection() failed",
                                              "Entering - ReadInfDirsFromIni", "GetPrivateProfileSection() failed"));
}

TEST_F(SetupIni, ASectionLongerThan258CharactersIsReadOnceMoreWithTwiceTheSize)
{
    WriteIni("[Win732E]\r\n" + DirectoryLines(20, 10)); // 20 lines of 21 characters with their terminators: 420
    TraceCapture trace;
    const std::vector<std::string> dirs = DirsOf("Win732E");
    ASSERT_EQ(dirs.size(), 20U);
    EXPECT_EQ(dirs.front(), R"(X:\0000000000\)");
    EXPECT_EQ(dirs.back(), R"(X:\0000000019\)");
    std::vector<std::string> expected{"Entering - ReadInfDirsFromIni",
                                      "GetPrivateProfileSection() increasing size of section buffer\n"};
    expected.insert(expected.end(), 20, "Entering - ResolvePah");
    EXPECT_EQ(trace.Messages(), expected);
}

TEST_F(SetupIni, ASectionLongerThan518CharactersStaysCutAndIsNotReadAThirdTime)
{
    WriteIni("[Win732E]\r\n" + DirectoryLines(40, 10));
    TraceCapture trace;
    const std::vector<std::string> dirs = DirsOf("Win732E");
    ASSERT_GE(dirs.size(), 24U);
    ASSERT_LE(dirs.size(), 25U) << "518 characters hold 24 whole lines and a part of the next";
    for (std::size_t index = 0; index < 24; ++index) {
        EXPECT_EQ(dirs[index], R"(X:\00000000)" + std::string(index < 10 ? "0" : "") + std::to_string(index) + "\\");
    }
    std::vector<std::string> expected{"Entering - ReadInfDirsFromIni",
                                      "GetPrivateProfileSection() increasing size of section buffer\n"};
    expected.insert(expected.end(), dirs.size(), "Entering - ResolvePah");
    EXPECT_EQ(trace.Messages(), expected);
}

TEST_F(SetupIni, ASectionThatFitsIsReadOnce)
{
    WriteIni("[Win732E]\r\n" + DirectoryLines(12, 10)); // 252 characters
    TraceCapture trace;
    EXPECT_EQ(DirsOf("Win732E").size(), 12U);
    std::vector<std::string> expected{"Entering - ReadInfDirsFromIni"};
    expected.insert(expected.end(), 12, "Entering - ResolvePah");
    EXPECT_EQ(trace.Messages(), expected);
}

TEST_F(SetupIni, ASectionOf257CharactersIsReadOnceAndOneOf258Twice)
{
    const std::string rest = DirectoryLines(11, 10); // 231 characters with their terminators
    for (const std::size_t length : {257U, 258U, 259U}) {
        const std::string last(length - 231 - std::string("InfDir=X:\\").size() - 1, 'l');
        WriteIni("[Win732E]\r\n" + rest + "InfDir=X:\\" + last + "\r\n");
        TraceCapture trace;
        const std::vector<std::string> dirs = DirsOf("Win732E");
        ASSERT_EQ(dirs.size(), 12U) << length;
        EXPECT_EQ(dirs.back(), "X:\\" + last + "\\") << length;
        std::vector<std::string> expected{"Entering - ReadInfDirsFromIni"};
        if (length >= 258) {
            expected.emplace_back("GetPrivateProfileSection() increasing size of section buffer\n");
        }
        expected.insert(expected.end(), 12, "Entering - ResolvePah");
        EXPECT_EQ(trace.Messages(), expected) << length;
    }
}

TEST_F(SetupIni, ExcludedFilesComeAsWritten)
{
    WriteIni(
        "[WinXP32]\r\nInfDir=Drv\r\nInfExclude=qdatdma.inf\r\nInfExclude=Tav1.INF\r\nInfExclude=\r\ninfexclude=x\r\n");
    TraceCapture trace;
    EXPECT_THAT(ExcludesOf("WinXP32"), ElementsAre("qdatdma.inf", "Tav1.INF", ""));
    EXPECT_THAT(trace.Messages(), ElementsAre("Entering - ReadInfExcludeFilesFromINI",
                                              "INFs to exclude:", "qdatdma.inf", "Tav1.INF", ""));
}

TEST_F(SetupIni, ExcludedFilesAreAppended)
{
    WriteIni("[WinXP32]\r\nInfExclude=b.inf\r\n");
    std::vector<std::string> excludes{"a.inf"};
    ReadInfExcludeFilesFromINI("WinXP32", excludes);
    EXPECT_THAT(excludes, ElementsAre("a.inf", "b.inf"));
}

TEST_F(SetupIni, AMissingSectionExcludesNothing)
{
    TraceCapture trace;
    EXPECT_THAT(ExcludesOf("WinXP32"), IsEmpty());
    EXPECT_THAT(trace.Messages(), ElementsAre("Entering - ReadInfExcludeFilesFromINI",
                                              "GetPrivateProfileSection() failed", "INFs to exclude:"));
}

TEST_F(SetupIni, ExcludesAfter1022CharactersAreLost)
{
    std::string lines;
    for (int index = 100; index < 200; ++index) {
        lines += "InfExclude=n" + std::to_string(index) + ".inf\r\n"; // 20 characters with its terminator
    }
    WriteIni("[WinXP32]\r\n" + lines);
    const std::vector<std::string> excludes = ExcludesOf("WinXP32");
    ASSERT_GE(excludes.size(), 51U);
    ASSERT_LE(excludes.size(), 52U);
    EXPECT_EQ(excludes.front(), "n100.inf");
    EXPECT_EQ(excludes[50], "n150.inf");
}

TEST_F(SetupIni, SectionNamesComeLastFirst)
{
    WriteIni("[Win732E]\r\nInfSectionName=Norda.NTamd64,Norda.NTamd64.6.0\r\n");
    TraceCapture trace;
    EXPECT_THAT(NamesFor(osWINSEVEN32E), ElementsAre("Norda.NTamd64.6.0", "Norda.NTamd64"));
    EXPECT_THAT(
        trace.Messages(),
        ElementsAre("Entering - GetINFSectionNamesFromINI", "section names from ini: Norda.NTamd64,Norda.NTamd64.6.0\n",
                    "added section name: Norda.NTamd64.6.0\n", "added section name: Norda.NTamd64\n"));
}

TEST_F(SetupIni, BlanksAroundCommasBelongToTheSectionNames)
{
    WriteIni("[Win732E]\r\nInfSectionName=A , B,C\r\n");
    EXPECT_THAT(NamesFor(osWINSEVEN32E), ElementsAre("C", " B", "A "));
}

TEST_F(SetupIni, AMissingSectionNameIsOneEmptyName)
{
    TraceCapture trace;
    EXPECT_THAT(NamesFor(osWINXP32), ElementsAre(""));
    EXPECT_THAT(trace.Messages(), ElementsAre("Entering - GetINFSectionNamesFromINI", "section names from ini: \n",
                                              "added section name: \n"));
}

TEST_F(SetupIni, AnUnservedSystemHasOneEmptySectionName)
{
    WriteIni("[]\r\nInfSectionName=A\r\n[WinXP32]\r\nInfSectionName=B\r\n");
    for (uint32_t code = 0; code <= 6; ++code) {
        TraceCapture trace;
        EXPECT_THAT(NamesFor(static_cast<OSCode>(code)), ElementsAre("")) << code;
        EXPECT_THAT(trace.Messages(),
                    ElementsAre("Entering - GetINFSectionNamesFromINI", "unsupported OS, unable to get section name\n",
                                "section names from ini: \n", "added section name: \n"));
    }
}

TEST_F(SetupIni, EveryServedSystemReadsItsOwnSectionAndCodes23And24TheSame)
{
    std::string content;
    for (const SystemRow& row : kSystems) {
        if (IsServed(row.code) && row.code != osWINEIGHTSRV32E) {
            content +=
                "[" + std::string(row.sectionKey) + "]\r\nInfSectionName=names " + std::to_string(row.code) + "\r\n";
        }
    }
    WriteIni(content);
    for (uint32_t code = 7; code <= 23; ++code) {
        EXPECT_THAT(NamesFor(static_cast<OSCode>(code)), ElementsAre("names " + std::to_string(code)));
    }
    EXPECT_THAT(NamesFor(osWINEIGHTSRV32E), ElementsAre("names 23"));
}

TEST_F(SetupIni, SectionNamesOfTheRunningSystem)
{
    const OSCode system = COSVersion().GetOSCode();
    ASSERT_TRUE(IsServed(system)) << "the session must run as a served system";
    WriteIni("[" + std::string(RowOf(system).sectionKey) + "]\r\nInfSectionName=A,B\r\n");
    std::vector<std::string> names{"before"};
    GetINFSectionNamesFromINI(names);
    EXPECT_THAT(names, ElementsAre("before", "B", "A"));
}

TEST_F(SetupIni, SectionNamesAreCutAt259Characters)
{
    WriteIni("[Win732E]\r\nInfSectionName=" + std::string(400, 'n') + "\r\n");
    const std::vector<std::string> names = NamesFor(osWINSEVEN32E);
    ASSERT_EQ(names.size(), 1U);
    EXPECT_EQ(names.front(), std::string(259, 'n'));
}

TEST_F(SetupIni, AFileWithoutALastLineEndIsReadWhole)
{
    WriteIni("[Win732E]\nInfSectionName=A\nInfDir=E:\\Drv");
    EXPECT_THAT(DirsOf("Win732E"), ElementsAre("E:\\Drv\\"));
    EXPECT_THAT(NamesFor(osWINSEVEN32E), ElementsAre("A"));
}

TEST_F(SetupIni, AUtf16FileIsReadLikeAnyOther)
{
    std::string content("\xFF\xFE");
    for (const char c : std::string("[Win732E]\r\nInfSectionName=A\r\nInfDir=E:\\Drv\r\n")) {
        content += c;
        content += '\0';
    }
    WriteIni(content);
    EXPECT_THAT(DirsOf("Win732E"), ElementsAre("E:\\Drv\\"));
    EXPECT_THAT(NamesFor(osWINSEVEN32E), ElementsAre("A"));
}

TEST_F(SetupIni, EmptyAndBinaryFilesReadAsNothing)
{
    std::string binary;
    for (int index = 0; index < 4096; ++index) {
        binary += static_cast<char>(index * 7 % 256);
    }
    for (const std::string& content :
         {std::string(), binary, std::string(100, '\0'), std::string("[[[]]]\r\n===\r\n")}) {
        WriteIni(content);
        EXPECT_THAT(DirsOf("Win732E"), IsEmpty());
        EXPECT_THAT(ExcludesOf("Win732E"), IsEmpty());
        EXPECT_THAT(NamesFor(osWINSEVEN32E), ElementsAre(""));
        EXPECT_EQ(GetLevelsToRootFromINI(), 0);
    }
}
