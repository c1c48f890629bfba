#include "ProcessLaunch.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>
#include <array>
#include <vector>

#include "DebugOutput.h"
#include "ErrorMode.h"
#include "ImportOverride.h"
#include "ProcessStarts.h"
#include "ScratchDirectory.h"
#include "TestFiles.h"

using testing::ElementsAre;
using testing::HasSubstr;

namespace {
std::string SystemFile(const std::string& name)
{
    std::array<char, MAX_PATH> directory{};
    GetSystemDirectoryA(directory.data(), MAX_PATH);
    return directory.data() + ("\\" + name);
}

std::string CurrentDirectory()
{
    std::array<char, MAX_PATH> directory{};
    GetCurrentDirectoryA(MAX_PATH, directory.data());
    return directory.data();
}

std::string SystemText(DWORD error)
{
    std::array<char, 512> text{};
    FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, error, 0x400, text.data(),
                   text.size(), nullptr);
    return text.data();
}

DriverInstallRecord RecordOf(std::string_view family)
{
    DriverInstallRecord record;
    std::ranges::copy(family, record.osFamily.begin());
    return record;
}

/// The recorder under the uninstaller's name in the system directory, gone again afterwards.
class Uninstaller
{
public:
    explicit Uninstaller(const std::string& name) : m_path(SystemFile(name))
    {
        DeleteFileA(Journal().c_str());
        CopyFileTo(TestFile("command_line_recorder.exe"), m_path);
    }
    ~Uninstaller()
    {
        DeleteFileA(m_path.c_str());
        DeleteFileA(Journal().c_str());
    }
    Uninstaller(const Uninstaller&) = delete;
    Uninstaller& operator=(const Uninstaller&) = delete;
    [[nodiscard]] const std::string& Path() const { return m_path; }
    [[nodiscard]] std::string Journal() const { return m_path + ".journal.txt"; }

private:
    std::string m_path;
};

std::string systemDirectory; // what the function below answers

UINT WINAPI AnswerSystemDirectory(LPSTR buffer, UINT size)
{
    lstrcpynA(buffer, systemDirectory.c_str(), static_cast<int>(size));
    return static_cast<UINT>(systemDirectory.size());
}

decltype(&FindFirstFileA) realFindFirstFile = nullptr;
std::vector<HANDLE> searches; // what the function below has opened

HANDLE WINAPI RecordSearch(LPCSTR path, LPWIN32_FIND_DATAA found)
{
    searches.push_back(realFindFirstFile(path, found));
    return searches.back();
}
} // namespace

TEST(ProcessLaunch, ProgramHasEndedWhenTheCallReturnsAndItsExitCodeIsNotRead)
{
    const ScratchDirectory scratch;
    const std::string program = scratch.At("with blank.exe");
    CopyFileTo(TestFile("command_line_recorder.exe"), program);
    const std::string command = "\"" + program + "\" one two";
    TraceCapture trace;
    EXPECT_EQ(0, LaunchAppandWait(command));
    EXPECT_THAT(ReadFileBytes(program + ".journal.txt"), HasSubstr("command line: " + command));
    EXPECT_THAT(trace.Messages(), ElementsAre("Entering - LaunchAppandWait", "LaunchAppandWait(),  " + command + "\n",
                                              "current directory:  " + CurrentDirectory() + "\n",
                                              "waiting for process to exit", "done waiting for process to exit\n"));
}

TEST(ProcessLaunch, MissingProgramYieldsMinusOneAndItsTrace)
{
    TraceCapture trace;
    EXPECT_EQ(-1, LaunchAppandWait("no-such-program.exe"));
    EXPECT_THAT(
        trace.Messages(),
        ElementsAre("Entering - LaunchAppandWait", "LaunchAppandWait(),  no-such-program.exe\n",
                    "current directory:  " + CurrentDirectory() + "\n", "CreateProcess() error (path too long?)",
                    "Entering - PrintGetLastErrorMessage", SystemText(ERROR_FILE_NOT_FOUND)));
}

TEST(ProcessLaunch, UninstallHasTheSameResultsAndAShorterTrace)
{
    TraceCapture trace;
    EXPECT_EQ(-1, UninstallAppandWait("no-such-program.exe"));
    EXPECT_THAT(trace.Messages(),
                ElementsAre("Entering - UninstallAppandWait", "CreateProcess() error (path too long?)",
                            "Entering - PrintGetLastErrorMessage", SystemText(ERROR_FILE_NOT_FOUND)));
    trace.Clear();
    EXPECT_EQ(0, UninstallAppandWait("\"" + TestFile("command_line_recorder.exe") + "\""));
    EXPECT_THAT(trace.Messages(), ElementsAre("Entering - UninstallAppandWait"));
    DeleteFileA((TestFile("command_line_recorder.exe") + ".journal.txt").c_str());
}

TEST(ProcessLaunch, UninstallerIsRunQuotedAndWithoutItsUserInterface)
{
    const Uninstaller uninstaller("Tavunstl.exe");
    TraceCapture trace;
    EXPECT_EQ(1, DoUninstall(RecordOf(kFamilyWindowsVista)));
    EXPECT_THAT(ReadFileBytes(uninstaller.Journal()), HasSubstr("command line: \"" + uninstaller.Path() + "\" /nogui"));
    EXPECT_THAT(trace.Messages(), ElementsAre("Entering - DoUninstall", "uninstall app: " + uninstaller.Path() + "\n",
                                              "Entering - UninstallAppandWait"));
}

TEST(ProcessLaunch, UninstallerInADirectoryWithBlanksIsCalledWhole)
{
    const ScratchDirectory scratch;
    systemDirectory = scratch.At("system directory with blanks");
    const std::string program = systemDirectory + "\\Tavunstl.exe";
    CopyFileTo(TestFile("command_line_recorder.exe"), program);
    TraceCapture trace;
    {
        const ImportOverride elsewhere("GetSystemDirectoryA", reinterpret_cast<void*>(AnswerSystemDirectory));
        EXPECT_EQ(1, DoUninstall(RecordOf(kFamilyWindowsVista)));
    }
    EXPECT_THAT(ReadFileBytes(program + ".journal.txt"), HasSubstr("command line: \"" + program + "\" /nogui\n"));
    EXPECT_THAT(trace.Messages(), ElementsAre("Entering - DoUninstall", "uninstall app: " + program + "\n",
                                              "Entering - UninstallAppandWait"));
}

TEST(ProcessLaunch, UninstallerThatCannotBeStartedStillCountsAsFound)
{
    const Uninstaller uninstaller("Tavunstl.exe");
    WriteFileBytes(uninstaller.Path(), "no program");
    TraceCapture trace;
    EXPECT_EQ(1, DoUninstall(RecordOf(kFamilyWindowsVista)));
    EXPECT_THAT(trace.Messages(), testing::Contains("CreateProcess() error (path too long?)"));
}

TEST(ProcessLaunch, OneSearchHandleStaysOpenPerUninstall)
{
    const Uninstaller uninstaller("Tavunstl.exe");
    realFindFirstFile = &FindFirstFileA;
    searches.clear();
    {
        const ImportOverride recorded("FindFirstFileA", reinterpret_cast<void*>(RecordSearch));
        EXPECT_EQ(1, DoUninstall(RecordOf(kFamilyWindowsVista)));
        EXPECT_EQ(1, DoUninstall(RecordOf(kFamilyWindowsVista)));
    }
    ASSERT_EQ(2U, searches.size());
    for (const HANDLE search : searches) {
        EXPECT_TRUE(FindClose(search)) << "only an open one can be closed";
    }
}

TEST(ProcessLaunch, LegacyFamiliesHaveAnUninstallerOfTheirOwn)
{
    const Uninstaller uninstaller("Kelsdel.exe");
    for (const char* family : {"Windows 98", "windows millenium"}) {
        DeleteFileA(uninstaller.Journal().c_str());
        EXPECT_EQ(1, DoUninstall(RecordOf(family))) << family;
        EXPECT_TRUE(FileExists(uninstaller.Journal())) << family;
    }
    for (const char* family : {"Windows 2000", "Windows Whistler", "Windows NT", "Windows 98 SE", ""}) {
        EXPECT_EQ(0, DoUninstall(RecordOf(family))) << family;
    }
}

TEST(ProcessLaunch, NoUninstallerYieldsZeroAndItsTrace)
{
    TraceCapture trace;
    EXPECT_EQ(0, DoUninstall(RecordOf(kFamilyWindowsVista)));
    EXPECT_THAT(trace.Messages(),
                ElementsAre("Entering - DoUninstall", "uninstall app: " + SystemFile("Tavunstl.exe") + "\n",
                            "unable to find uninstall app\n"));
}

TEST(ProcessLaunch, ProgramsAreStartedPlainlyAndWaitedForWithoutALimit)
{
    for (int (*launch)(std::string) : {&LaunchAppandWait, &UninstallAppandWait}) {
        const ProcessStarts starts;
        EXPECT_EQ(0, launch("program.exe one two"));
        ASSERT_EQ(1U, starts.Starts().size());
        const ProcessStarts::Start& start = starts.Starts()[0];
        EXPECT_EQ("program.exe one two", start.commandLine);
        EXPECT_FALSE(start.namesTheProgram) << "the command line alone names it";
        EXPECT_FALSE(start.hasSecurity);
        EXPECT_FALSE(start.inherits);
        EXPECT_EQ(0U, start.flags);
        EXPECT_FALSE(start.hasEnvironment) << "it runs in the caller's environment";
        EXPECT_FALSE(start.hasDirectory) << "and in the caller's current directory";
        EXPECT_TRUE(start.recordIsPlain);
        EXPECT_THAT(starts.WaitLimits(), ElementsAre(DWORD{INFINITE}));
        EXPECT_EQ(0U, starts.OpenHandles()) << "the process's and the thread's";
    }
}

namespace {
std::vector<UINT> inheritedErrorModes;

UINT CurrentErrorMode()
{
    const UINT mode = SetErrorMode(0);
    SetErrorMode(mode);
    return mode;
}

BOOL WINAPI NoteErrorMode(LPCSTR, LPSTR, LPSECURITY_ATTRIBUTES, LPSECURITY_ATTRIBUTES, BOOL, DWORD, LPVOID, LPCSTR,
                          LPSTARTUPINFOA, LPPROCESS_INFORMATION)
{
    inheritedErrorModes.push_back(CurrentErrorMode());
    return FALSE;
}
} // namespace

TEST(ProcessLaunch, ProgramsInheritTheErrorModeThatThisProcessStartedWith)
{
    const UINT before = SetErrorMode(SEM_NOOPENFILEERRORBOX);
    ReportCriticalErrorsToTheProgram();
    inheritedErrorModes.clear();
    {
        const ImportOverride note("CreateProcessA", reinterpret_cast<void*>(NoteErrorMode));
        LaunchAppandWait("program.exe");
        UninstallAppandWait("program.exe");
    }
    EXPECT_THAT(inheritedErrorModes, ElementsAre(SEM_NOOPENFILEERRORBOX, SEM_NOOPENFILEERRORBOX));
    EXPECT_EQ(CurrentErrorMode(), UINT{SEM_NOOPENFILEERRORBOX | SEM_FAILCRITICALERRORS}) << "this one keeps its own";
    SetErrorMode(before);
}

TEST(ProcessLaunch, AModeThatTheProcessAlreadyHadIsInherited)
{
    const UINT before = SetErrorMode(SEM_FAILCRITICALERRORS);
    ReportCriticalErrorsToTheProgram();
    {
        const StartErrorMode inherited;
        EXPECT_EQ(CurrentErrorMode(), UINT{SEM_FAILCRITICALERRORS});
    }
    SetErrorMode(before);
}
