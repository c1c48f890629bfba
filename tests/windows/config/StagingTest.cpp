#include "Staging.h"

#include <gmock/gmock.h>
#include <windows.h>

#include <algorithm>
#include <array>
#include <bit>

#include "AttributeRequests.h"
#include "DebugOutput.h"
#include "Handles.h"
#include "ImportOverride.h"
#include "JapaneseCodePage.h"
#include "LocationInfo.h"
#include "RegistryAccess.h"
#include "RegistryKeys.h"
#include "ScratchDirectory.h"
#include "SystemText.h"
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

std::string CurrentDirectory()
{
    std::array<char, MAX_PATH> directory{};
    GetCurrentDirectoryA(MAX_PATH, directory.data());
    return directory.data();
}

/// The names that a search of the directory returns, in its order, "." and ".." among them.
std::vector<std::string> EntriesOf(const std::string& directory)
{
    std::vector<std::string> names;
    WIN32_FIND_DATAA entry{};
    const UniqueSearch search(FindFirstFileA((directory + "*").c_str(), &entry));
    for (bool found = search.IsOpen(); found; found = FindNextFileA(search.Get(), &entry) != FALSE) {
        names.emplace_back(entry.cFileName);
    }
    return names;
}

/// The lines of a copy that the platform refuses, with the reason that it gives.
std::vector<std::string> FailedCopyLines(const std::string& source, const std::string& destination)
{
    EXPECT_FALSE(CopyFileA(source.c_str(), destination.c_str(), FALSE)) << source;
    const DWORD error = GetLastError();
    return {"src: " + source + "\ndst: " + destination + "\n", "Entering - PrintGetLastErrorMessage",
            SystemText(error)};
}

void RemoveFallbackDirectory()
{
    DeleteFileA(FallbackDirectory().c_str());
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

BOOL WINAPI RefuseNextEntry(HANDLE, LPWIN32_FIND_DATAA)
{
    SetLastError(ERROR_GEN_FAILURE);
    return FALSE;
}

// Still closes the search; only the result differs.
BOOL WINAPI CloseAndAnswerNo(HANDLE search)
{
    static const auto close =
        std::bit_cast<decltype(&FindClose)>(GetProcAddress(GetModuleHandleA("kernel32.dll"), "FindClose"));
    close(search);
    return FALSE;
}
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

TEST_F(Staging, AFailedCopyIsTracedWithItsReason)
{
    WriteFileBytes(m_kit.At(R"(DrvA\driver.sys)"), "driver");
    TraceCapture trace;
    EXPECT_EQ(0, CopyAllFiles(m_kit.At("DrvA\\"), m_target.At("nowhere\\")));
    const std::vector<std::string> messages = trace.Messages();
    const auto failure = std::ranges::find(
        messages, "src: " + m_kit.At(R"(DrvA\driver.sys)") + "\ndst: " + m_target.At(R"(nowhere\driver.sys)") + "\n");
    ASSERT_LT(2, messages.end() - failure);
    EXPECT_THAT(std::vector(failure + 1, failure + 3),
                ElementsAre("Entering - PrintGetLastErrorMessage", SystemText(ERROR_PATH_NOT_FOUND)));
}

TEST_F(Staging, TheWholeTraceOfAFallback)
{
    WriteFileBytes(m_kit.At("Morvix.ini"), "[WinXP32]\r\nInfDir=DrvA\r\n");
    WriteFileBytes(m_kit.At(R"(DrvA\driver.sys)"), "driver");
    RemoveDirectoryA(Cab("").c_str());
    const std::string source = m_kit.At("DrvA\\");
    std::vector<std::string> expected{"Enter -> CopyFilesToCabDir\n", "cab dir: " + Cab("") + "\n"};
    const auto append = [&expected](const std::vector<std::string>& lines) {
        expected.insert(expected.end(), lines.begin(), lines.end());
    };
    const auto appendSearchAndCopies = [&](const std::string& target, const std::vector<std::string>& linesOfTheFile) {
        append({"Entering - GetInfDirs", "reading ini file for candidate directories\n", "osWINXP32 detected\n",
                "Entering - ReadInfDirsFromIni", "Entering - ResolvePah", "Entering - GetLevelsToRootFromINI",
                "Entering - ReadInfExcludeFilesFromINI", "INFs to exclude:", "infdirs: [" + source + "] \n",
                "Entering - CopyAllFiles"});
        for (const std::string& name : EntriesOf(source)) {
            append(name == "driver.sys" ? linesOfTheFile : FailedCopyLines(source + name, target + name));
        }
        append({"Found all of the files\n"});
    };

    TraceCapture trace;
    CopyFilesToCabDirFor(osWINXP32);
    appendSearchAndCopies(Cab(""), {"src: " + source + "driver.sys\ndst: " + Cab("driver.sys") + "\n",
                                    "Entering - PrintGetLastErrorMessage", SystemText(ERROR_PATH_NOT_FOUND)});
    append({"new cab dir: " + Fallback("") + "\n"});
    appendSearchAndCopies(Fallback(""), {"copied file to: " + Fallback("driver.sys") + "\n"});
    append({"Exit -> CopyFilesToCabDir\n"});
    EXPECT_EQ(expected, trace.Messages());
}

TEST_F(Staging, ExistingFallbackDirectoryIsNotAnError)
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

TEST_F(Staging, SystemWithoutASectionEndsLikeOneWithNothingCopied)
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
    ASSERT_NE(messages.end(), launch);

    // The second search for directories, with its result, comes before the look for the helper.
    const auto enter = std::ranges::find(messages, "Enter -> Win98InfNotAvail\n");
    ASSERT_LT(enter, exit);
    const auto newCabDirectory = std::find(messages.begin(), enter, "new cab dir: " + Fallback("") + "\n");
    ASSERT_NE(newCabDirectory, enter);
    EXPECT_THAT(std::vector(newCabDirectory + 1, enter),
                ElementsAre("Entering - GetInfDirs", "reading ini file for candidate directories\n",
                            "unsupported os detected\n", "infdirs: \n"));
}

TEST_F(Staging, Win98InfNotAvailReturnsWhatTheLaunchReturned)
{
    EXPECT_EQ(-1, Win98InfNotAvail(Cab(""))) << "no helper";
    CopyFileTo(TestFile("command_line_recorder.exe"), m_kit.At("Rundll.exe"));
    EXPECT_EQ(0, Win98InfNotAvail(Cab(""))) << "the helper's own exit code, 7, does not count";
    EXPECT_THAT(ReadFileBytes(m_kit.At("Rundll.exe.journal.txt")),
                HasSubstr("command line: Rundll.exe Inst98.dll,EntryPoint noID " + Cab("") + "\n"));
}

TEST_F(Staging, TheProgramsDirectoryInItsShortFormIsTheCurrentOne)
{
    const std::string directory = m_kit.At("a program directory with a long name");
    CreateDirectoryA(directory.c_str(), nullptr);
    LocationInfo.programName = directory + R"(\Morvix.exe)";
    std::array<char, MAX_PATH> shortForm{};
    ASSERT_NE(0U, GetShortPathNameA(directory.c_str(), shortForm.data(), MAX_PATH));
    ASSERT_NE(directory, shortForm.data()) << "this disk has no short names";
    TraceCapture trace;
    Win98InfNotAvail(Cab(""));
    EXPECT_EQ(shortForm.data(), CurrentDirectory());
    EXPECT_THAT(trace.Messages(), Contains("current directory:  " + std::string(shortForm.data()) + "\n"));
}

TEST_F(Staging, SecondByteThatLooksLikeABackslashDoesNotEndTheProgramsDirectory)
{
    const JapaneseCodePage japanese;
    LocationInfo.programName = m_kit.At(kJapaneseLetter) + ".exe";
    std::array<char, MAX_PATH> shortForm{};
    ASSERT_NE(0U, GetShortPathNameA(m_kit.Path().c_str(), shortForm.data(), MAX_PATH));
    Win98InfNotAvail(Cab(""));
    EXPECT_EQ(shortForm.data(), CurrentDirectory());
}

TEST_F(Staging, DirectoriesAmongTheEntriesFailToCopyAndTheFilesAreStillCopied)
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

TEST_F(Staging, TargetThatIsDeniedIsTracedWithItsReasonAndTheNextFileIsCopied)
{
    WriteFileBytes(m_kit.At(R"(DrvA\driver.sys)"), "new");
    WriteFileBytes(m_kit.At(R"(DrvA\one.txt)"), "1");
    WriteFileBytes(Cab("driver.sys"), "old");
    // Another program has it open and does not share it.
    const UniqueFile holder(
        CreateFileA(Cab("driver.sys").c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
    ASSERT_TRUE(holder.IsOpen());
    TraceCapture trace;
    CopyFilesToCabDirFor(osWINXP32);
    const std::vector<std::string> messages = trace.Messages();
    const auto failure =
        std::ranges::find(messages, "src: " + m_kit.At(R"(DrvA\driver.sys)") + "\ndst: " + Cab("driver.sys") + "\n");
    ASSERT_LT(failure, messages.end() - 2);
    EXPECT_EQ("Entering - PrintGetLastErrorMessage", *(failure + 1));
    EXPECT_EQ(SystemText(ERROR_SHARING_VIOLATION), *(failure + 2));
    EXPECT_TRUE(FileExists(Cab("one.txt")));
    EXPECT_FALSE(FileExists(FallbackDirectory()));
}

TEST_F(Staging, WhenEveryTargetIsDeniedEveryDirectoryIsCopiedAgainIntoTheFallback)
{
    WriteFileBytes(m_kit.At(R"(DrvA\driver.sys)"), "driver");
    WriteFileBytes(m_kit.At(R"(DrvB\driver.inf)"), "inf");
    // A directory in the place of each file.
    CreateDirectoryA(Cab("driver.sys").c_str(), nullptr);
    CreateDirectoryA(Cab("driver.inf").c_str(), nullptr);
    TraceCapture trace;
    CopyFilesToCabDirFor(osWINXP32);
    EXPECT_EQ("driver", ReadFileBytes(Fallback("driver.sys")));
    EXPECT_EQ("inf", ReadFileBytes(Fallback("driver.inf")));
    EXPECT_THAT(trace.Messages(),
                Contains("src: " + m_kit.At(R"(DrvB\driver.inf)") + "\ndst: " + Cab("driver.inf") + "\n"));
}

TEST_F(Staging, WhenTheFallbackCannotBeMadeEitherTheStagingStillEnds)
{
    WriteFileBytes(m_kit.At(R"(DrvA\driver.sys)"), "driver");
    RemoveDirectoryA(Cab("").c_str());
    // A file in the place of the directory.
    WriteFileBytes(FallbackDirectory(), "");
    TraceCapture trace;
    CopyFilesToCabDirFor(osWINXP32);
    DeleteFileA(FallbackDirectory().c_str());
    const std::vector<std::string> messages = trace.Messages();
    EXPECT_THAT(messages,
                Contains("src: " + m_kit.At(R"(DrvA\driver.sys)") + "\ndst: " + Fallback("driver.sys") + "\n"));
    EXPECT_EQ("Exit -> CopyFilesToCabDir\n", messages.back());
}

TEST_F(Staging, ASearchThatBreaksOffIsTracedAndKeepsWhatIsCopied)
{
    WriteFileBytes(m_kit.At(R"(DrvA\driver.sys)"), "driver");
    TraceCapture trace;
    int copied = 1;
    {
        const ImportOverride breaksOff("FindNextFileA", reinterpret_cast<void*>(RefuseNextEntry));
        copied = CopyAllFiles(m_kit.At("DrvA\\"), Cab(""));
    }
    const std::vector<std::string> messages = trace.Messages();
    EXPECT_EQ("Unable to find next file\n", messages.back());
    EXPECT_THAT(messages, Not(Contains("Found all of the files\n")));
    EXPECT_EQ(FileExists(Cab("driver.sys")) ? 1 : 0, copied) << "the first entry alone was met";
}

TEST_F(Staging, ASearchThatCannotBeClosedIsTracedLastAndChangesNoResult)
{
    WriteFileBytes(m_kit.At(R"(DrvA\driver.sys)"), "driver");
    TraceCapture trace;
    {
        const ImportOverride staysOpen("FindClose", reinterpret_cast<void*>(CloseAndAnswerNo));
        EXPECT_EQ(1, CopyAllFiles(m_kit.At("DrvA\\"), Cab("")));
    }
    const std::vector<std::string> messages = trace.Messages();
    ASSERT_GE(messages.size(), 2U);
    EXPECT_EQ("Found all of the files\n", messages[messages.size() - 2]);
    EXPECT_EQ("Unable to close search handle\n", messages.back());
}

TEST_F(Staging, SourcePathThatEndsWithABackslashGetsNoSecondOne)
{
    SetRegistryText(kSetupKey, "SourcePath", Cab(""));
    WriteFileBytes(m_kit.At(R"(DrvA\driver.sys)"), "driver");
    TraceCapture trace;
    CopyFilesToCabDirFor(osWINXP32);
    EXPECT_EQ("cab dir: " + m_target.At("cab") + "\\\n", trace.Messages().at(1));
    EXPECT_EQ("driver", ReadFileBytes(Cab("driver.sys")));
}

TEST_F(Staging, SetupKeyIsOpenedForReadingAndWriting)
{
    const RegistryAccess access;
    CopyFilesToCabDirFor(osWINXP32);
    EXPECT_THAT(access.AskedFor(kSetupKey), ElementsAre(0x2001F)) << "KEY_READ and KEY_WRITE, not KEY_ALL_ACCESS";
}

TEST_F(Staging, TargetsAttributesBecomeNormalAndNothingElse)
{
    WriteFileBytes(m_kit.At(R"(DrvA\driver.sys)"), "driver");
    const AttributeRequests requests;
    EXPECT_EQ(1, CopyAllFiles(m_kit.At("DrvA\\"), Cab("")));
    EXPECT_THAT(requests.Calls(), Contains(AttributeRequests::Call{Cab("driver.sys"), 128}));
    for (const AttributeRequests::Call& request : requests.Calls()) {
        EXPECT_EQ(128U, request.attributes) << request.file;
    }
}
