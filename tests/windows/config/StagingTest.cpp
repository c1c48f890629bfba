#include "Staging.h"

#include <gmock/gmock.h>
#include <windows.h>

#include <array>

#include "DebugOutput.h"
#include "LocationInfo.h"
#include "RegistryKeys.h"
#include "ScratchDirectory.h"
#include "TestFiles.h"

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsSupersetOf;
using testing::Not;

namespace {
constexpr char kSetupKey[] = R"(Software\Microsoft\Windows\CurrentVersion\Setup)";

std::string FallbackDirectory()
{
    std::array<char, MAX_PATH> windows{};
    GetWindowsDirectoryA(windows.data(), MAX_PATH);
    return windows.data() + std::string(R"(\INSTALL)");
}

void RemoveFallbackDirectory()
{
    for (const char* name : {"driver.sys", "driver.inf", "one.txt"}) {
        DeleteFileA((FallbackDirectory() + "\\" + name).c_str());
    }
    RemoveDirectoryA(FallbackDirectory().c_str());
}

/// A kit with two INF directories for the system WinXP32, a cab directory named by the registry, and the program in the
/// kit. What the registry named before is put back.
class Staging : public testing::Test
{
protected:
    Staging() : m_sourcePathBefore(ReadRegistryValue(kSetupKey, "SourcePath"))
    {
        GetCurrentDirectoryA(MAX_PATH, m_directoryBefore.data());
        LocationInfo.setupDir = m_kit.Path();
        LocationInfo.programName = m_kit.At("Morvix.exe");
        WriteFileBytes(m_kit.At("Morvix.ini"), "[WinXP32]\r\nInfDir=DrvA\r\nInfDir=DrvB\r\n");
        CreateDirectoryA(m_kit.At("DrvA").c_str(), nullptr);
        CreateDirectoryA(m_kit.At("DrvB").c_str(), nullptr);
        CreateDirectoryA(Cab("").c_str(), nullptr);
        SetRegistryText(kSetupKey, "SourcePath", m_target.At("cab"));
        RemoveFallbackDirectory();
    }
    ~Staging() override
    {
        SetCurrentDirectoryA(m_directoryBefore.data());
        LocationInfo = {};
        RemoveFallbackDirectory();
        DeleteSourcePath();
        if (m_sourcePathBefore) {
            SetRegistryBytes(kSetupKey, "SourcePath", m_sourcePathBefore->bytes, m_sourcePathBefore->type);
        }
    }

    [[nodiscard]] std::string Cab(const std::string& name) const { return m_target.At("cab\\" + name); }
    static std::string Fallback(const std::string& name) { return FallbackDirectory() + "\\" + name; }
    static void DeleteSourcePath()
    {
        HKEY key = nullptr;
        if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, kSetupKey, 0, KEY_ALL_ACCESS, &key) == ERROR_SUCCESS) {
            RegDeleteValueA(key, "SourcePath");
            RegCloseKey(key);
        }
    }

    ScratchDirectory m_kit;
    ScratchDirectory m_target;

private:
    std::optional<RegistryValue> m_sourcePathBefore;
    std::array<char, MAX_PATH> m_directoryBefore{};
};
} // namespace

TEST_F(Staging, FilesOfEveryDirectoryAreCopiedAndNoFallbackIsMade)
{
    WriteFileBytes(m_kit.At(R"(DrvB\driver.sys)"), "driver");
    WriteFileBytes(m_kit.At(R"(DrvB\driver.inf)"), "inf");
    TraceCapture trace;
    CopyFilesToCabDirFor(osWINXP32);
    EXPECT_EQ("driver", ReadFileBytes(Cab("driver.sys")));
    EXPECT_EQ("inf", ReadFileBytes(Cab("driver.inf")));
    EXPECT_FALSE(FileExists(FallbackDirectory()));
    const std::vector<std::string> messages = trace.Messages();
    EXPECT_EQ("Enter -> CopyFilesToCabDir\n", messages.front());
    EXPECT_EQ("cab dir: " + Cab("") + "\n", messages.at(1));
    EXPECT_THAT(messages,
                IsSupersetOf({"copied file to: " + Cab("driver.sys") + "\n", std::string("Found all of the files\n")}));
    EXPECT_EQ("Exit -> CopyFilesToCabDir\n", messages.back());
}

TEST_F(Staging, OneCopiedFileIsEnoughToKeepTheCabDirectory)
{
    WriteFileBytes(m_kit.At(R"(DrvA\one.txt)"), "1");
    CopyFilesToCabDirFor(osWINXP32);
    EXPECT_TRUE(FileExists(Cab("one.txt")));
    EXPECT_FALSE(FileExists(FallbackDirectory()));
}

TEST_F(Staging, ReadOnlyTargetOfAnEarlierCopyIsOverwritten)
{
    WriteFileBytes(m_kit.At(R"(DrvA\driver.sys)"), "new");
    WriteFileBytes(Cab("driver.sys"), "old");
    SetFileAttributesA(Cab("driver.sys").c_str(), FILE_ATTRIBUTE_READONLY);
    CopyFilesToCabDirFor(osWINXP32);
    EXPECT_EQ("new", ReadFileBytes(Cab("driver.sys")));
}

TEST_F(Staging, EmptyDirectoriesLeadToTheFallbackAndTheRegistryKeepsItsDirectory)
{
    TraceCapture trace;
    CopyFilesToCabDirFor(osWINXP32);
    EXPECT_TRUE(FileExists(FallbackDirectory()));
    EXPECT_EQ(m_target.At("cab"), ReadRegistryText(kSetupKey, "SourcePath"));
    EXPECT_THAT(trace.Messages(), Contains("new cab dir: " + Fallback("") + "\n"));
}

TEST_F(Staging, FailedCopiesAreRepeatedIntoTheFallback)
{
    WriteFileBytes(m_kit.At(R"(DrvA\driver.sys)"), "driver");
    RemoveDirectoryA(Cab("").c_str());
    TraceCapture trace;
    CopyFilesToCabDirFor(osWINXP32);
    EXPECT_EQ("driver", ReadFileBytes(Fallback("driver.sys")));
    EXPECT_THAT(trace.Messages(),
                Contains("src: " + m_kit.At(R"(DrvA\driver.sys)") + "\ndst: " + Cab("driver.sys") + "\n"));
}

TEST_F(Staging, ExistingFallbackDirectoryIsNoError)
{
    CreateDirectoryA(FallbackDirectory().c_str(), nullptr);
    WriteFileBytes(m_kit.At(R"(DrvA\driver.sys)"), "driver");
    RemoveDirectoryA(Cab("").c_str());
    CopyFilesToCabDirFor(osWINXP32);
    EXPECT_TRUE(FileExists(Fallback("driver.sys")));
}

TEST_F(Staging, WithoutASourcePathNothingIsCopiedToAPathWithoutADirectory)
{
    DeleteSourcePath();
    SetCurrentDirectoryA(m_target.Path().c_str());
    WriteFileBytes(m_kit.At(R"(DrvA\driver.sys)"), "driver");
    TraceCapture trace;
    CopyFilesToCabDirFor(osWINXP32);
    EXPECT_FALSE(FileExists(m_target.At("driver.sys")));
    EXPECT_FALSE(FileExists(R"(\driver.sys)"));
    EXPECT_EQ("driver", ReadFileBytes(Fallback("driver.sys")));
    EXPECT_EQ("cab dir: \n", trace.Messages().at(1));
}

TEST_F(Staging, SourcePathWithoutTerminatorThatFillsItsBufferIsReadSafely)
{
    SetRegistryBytes(kSetupKey, "SourcePath", std::string(256, 'x'), REG_BINARY);
    TraceCapture trace;
    CopyFilesToCabDirFor(osWINXP32);
    EXPECT_EQ("cab dir: " + std::string(256, 'x') + "\\\n", trace.Messages().at(1));
}

TEST_F(Staging, SystemWithoutASectionGoesTheWayOfNothingCopied)
{
    TraceCapture trace;
    CopyFilesToCabDirFor(osWINME);
    EXPECT_THAT(trace.Messages(), Contains("unsupported os detected\n").Times(2));
    EXPECT_TRUE(FileExists(FallbackDirectory()));
}

TEST_F(Staging, HelperIsRunOnWindows98AfterTheCopiesAndNotOnWindowsMe)
{
    CopyFileTo(TestFile("command_line_recorder.exe"), m_kit.At("Rundll.exe"));
    const std::string journal = m_kit.At("Rundll.exe.journal.txt");
    // The helper is found because the program's directory has become the current one.
    CopyFilesToCabDirFor(osWINME);
    EXPECT_FALSE(FileExists(journal));
    TraceCapture trace;
    CopyFilesToCabDirFor(osWIN98);
    EXPECT_THAT(ReadFileBytes(journal),
                HasSubstr("command line: Rundll.exe Inst98.dll,EntryPoint noID " + Fallback("") + "\n"));
    const std::vector<std::string> messages = trace.Messages();
    const auto exit = std::ranges::find(messages, "Exit -> Win98InfNotAvail\n");
    const auto launch = std::ranges::find(messages, "Entering - LaunchAppandWait");
    EXPECT_LT(exit, launch) << "the exit is traced before the launch";
    EXPECT_NE(messages.end(), launch);
}

TEST_F(Staging, DirectoriesAmongTheEntriesFailToCopyAndTheFilesAreCopiedAllTheSame)
{
    CreateDirectoryA(m_kit.At(R"(DrvA\deeper)").c_str(), nullptr);
    WriteFileBytes(m_kit.At(R"(DrvA\one.txt)"), "1");
    TraceCapture trace;
    EXPECT_EQ(1, CopyAllFiles(m_kit.At("DrvA\\"), Cab("")));
    EXPECT_TRUE(FileExists(Cab("one.txt")));
    EXPECT_THAT(trace.Messages(), Contains("src: " + m_kit.At(R"(DrvA\deeper)") + "\ndst: " + Cab("deeper") + "\n"));
}

TEST_F(Staging, MissingSourceDirectoryCopiesNothing)
{
    TraceCapture trace;
    EXPECT_EQ(0, CopyAllFiles(m_kit.At("nowhere\\"), Cab("")));
    EXPECT_THAT(trace.Messages(), ElementsAre("Entering - CopyAllFiles", "no files found in source directory\n"));
}

TEST_F(Staging, LargeDirectoriesAreCopiedWhole)
{
    constexpr int kFiles = 5000;
    for (int i = 0; i < kFiles; ++i) {
        WriteFileBytes(m_kit.At("DrvA\\f" + std::to_string(i) + ".dat"), "");
    }
    EXPECT_EQ(1, CopyAllFiles(m_kit.At("DrvA\\"), Cab("")));
    int missing = 0;
    for (int i = 0; i < kFiles; ++i) {
        missing += FileExists(Cab("f" + std::to_string(i) + ".dat")) ? 0 : 1;
    }
    EXPECT_EQ(0, missing);
}
