#include "IScsiConfigTool.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>

#include "AdapterDevices.h"
#include "DebugOutput.h"
#include "ErrorMode.h"
#include "Handles.h"
#include "HelperPrograms.h"
#include "ImportOverride.h"
#include "ProcessStarts.h"
#include "ScratchDirectory.h"
#include "TestThread.h"

using testing::ElementsAre;
using testing::StartsWith;

namespace {
std::string ToolPath()
{
    std::array<char, MAX_PATH> directory{};
    GetSystemDirectoryA(directory.data(), MAX_PATH);
    return directory.data() + std::string(R"(\iscsivrf.exe)");
}

/// A tool in the system directory that journals its command line, gone at the end of the object's life.
class Tool
{
public:
    explicit Tool(const std::function<void()>& make = [] {
        CopyFileTo(TestFile("command_line_recorder.exe"), ToolPath());
    })
    {
        make();
    }
    ~Tool()
    {
        DeleteFileA(ToolPath().c_str());
        DeleteFileA(JournalPath().c_str());
    }
    Tool(const Tool&) = delete;
    Tool& operator=(const Tool&) = delete;

    [[nodiscard]] static std::string JournalPath() { return JournalOf(ToolPath()); }
};
} // namespace

TEST(IScsiConfigTool, RunsFromTheSystemDirectoryWithVerifyAndFix)
{
    const Tool tool;
    TraceCapture trace;
    CalliSCSIConfigExe();
    EXPECT_THAT(ReadFileBytes(Tool::JournalPath()),
                StartsWith("command line: " + ToolPath() + " /verify /fix\ndirectory: "));
    EXPECT_THAT(trace.Messages(), ElementsAre("Entering CalliSCSIConfigExe", "Leaving CalliSCSIConfigExe"));
}

TEST(IScsiConfigTool, TheCallReturnsOnlyWhenTheToolHasEnded)
{
    const Tool tool([] { MakeHelperProgram(ToolPath()); });
    const UniqueHandle started(CreateEventA(nullptr, TRUE, FALSE, kSlowToolStarted));
    const UniqueHandle mayEnd(CreateEventA(nullptr, TRUE, FALSE, kSlowToolMayEnd));
    const UniqueHandle returned(CreateEventA(nullptr, TRUE, FALSE, nullptr));
    DWORD start = WAIT_FAILED;
    DWORD returnBeforeTheEnd = WAIT_FAILED;
    TestThread whoEndsIt([&] {
        start = WaitForSingleObject(started.get(), 60000);
        // A call that does not wait would be back in that time.
        returnBeforeTheEnd = WaitForSingleObject(returned.get(), 500);
        SetEvent(mayEnd.get());
    });
    CalliSCSIConfigExe();
    const bool hadEnded = FileExists(Tool::JournalPath());
    SetEvent(returned.get());
    whoEndsIt.join();
    EXPECT_TRUE(hadEnded);
    EXPECT_EQ(start, WAIT_OBJECT_0);
    EXPECT_EQ(returnBeforeTheEnd, DWORD{WAIT_TIMEOUT});
}

TEST(IScsiConfigTool, WhileItRunsTheCallersWindowsAnswerSentMessages)
{
    const Tool tool([] { MakeHelperProgram(ToolPath()); });
    const UniqueHandle started(CreateEventA(nullptr, TRUE, FALSE, kSlowToolStarted));
    const UniqueHandle mayEnd(CreateEventA(nullptr, TRUE, FALSE, kSlowToolMayEnd));
    const HWND window =
        CreateWindowA("STATIC", "the window's text", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
    ASSERT_NE(window, nullptr);
    std::array<char, 64> text{};
    LRESULT answered = 0;
    TestThread sender([&] {
        WaitForSingleObject(started.get(), 60000);
        answered = SendMessageTimeoutA(window, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()),
                                       SMTO_NORMAL, 30000, nullptr);
        SetEvent(mayEnd.get());
    });
    CalliSCSIConfigExe();
    sender.join();
    DestroyWindow(window);
    EXPECT_NE(answered, 0);
    EXPECT_STREQ(text.data(), "the window's text");
}

TEST(IScsiConfigTool, MissingToolIsTraced)
{
    ASSERT_FALSE(FileExists(ToolPath()));
    TraceCapture trace;
    CalliSCSIConfigExe();
    EXPECT_THAT(trace.Messages(),
                ElementsAre("Entering CalliSCSIConfigExe", "Failed to call iSCSI command line utility.",
                            "Leaving CalliSCSIConfigExe"));
}

TEST(IScsiConfigTool, RunsLeaveNoHandleOpen)
{
    const Tool tool;
    EXPECT_EQ(HandlesLeftBy(10, CalliSCSIConfigExe), 0);
}

TEST(IScsiConfigTool, ThousandFailedCallsLeaveNoHandleOpen)
{
    EXPECT_EQ(HandlesLeftBy(1000, CalliSCSIConfigExe), 0);
}

namespace {
/// How the tool was asked to be started last.
struct Start
{
    bool namesTheProgram = true;
    bool inherits = true;
    DWORD flags = 0;
    bool hasEnvironment = true;
    bool hasDirectory = true;
    UINT errorMode = 0; ///< the one that it would inherit
};
Start lastStart;

UINT CurrentErrorMode()
{
    const UINT mode = SetErrorMode(0);
    SetErrorMode(mode);
    return mode;
}

BOOL WINAPI NoteStart(LPCSTR program, LPSTR, LPSECURITY_ATTRIBUTES, LPSECURITY_ATTRIBUTES, BOOL inherit, DWORD flags,
                      LPVOID environment, LPCSTR directory, LPSTARTUPINFOA, LPPROCESS_INFORMATION)
{
    lastStart = {.namesTheProgram = program != nullptr,
                 .inherits = inherit != FALSE,
                 .flags = flags,
                 .hasEnvironment = environment != nullptr,
                 .hasDirectory = directory != nullptr,
                 .errorMode = CurrentErrorMode()};
    return FALSE;
}
} // namespace

TEST(IScsiConfigTool, IsStartedWithoutAWindowAndInheritsNothing)
{
    lastStart = {};
    const ImportOverride note("CreateProcessA", reinterpret_cast<void*>(NoteStart));
    CalliSCSIConfigExe();
    EXPECT_FALSE(lastStart.namesTheProgram) << "the command line alone names it";
    EXPECT_FALSE(lastStart.inherits);
    EXPECT_EQ(lastStart.flags, DWORD{CREATE_NO_WINDOW});
    EXPECT_FALSE(lastStart.hasEnvironment) << "it runs in the program's own environment";
    EXPECT_FALSE(lastStart.hasDirectory) << "and in its current directory";
}

TEST(IScsiConfigTool, IsWaitedForWithoutALimit)
{
    const ProcessStarts starts;
    CalliSCSIConfigExe();
    ASSERT_EQ(starts.Starts().size(), 1U);
    EXPECT_THAT(starts.WaitLimits(), ElementsAre(DWORD{INFINITE}));
    EXPECT_EQ(starts.OpenHandles(), 0U) << "the process's and the thread's";
}

TEST(IScsiConfigTool, InheritsTheErrorModeThatThisProcessStartedWith)
{
    const UINT before = SetErrorMode(SEM_NOOPENFILEERRORBOX);
    ReportCriticalErrorsToTheProgram();
    EXPECT_EQ(CurrentErrorMode(), UINT{SEM_NOOPENFILEERRORBOX | SEM_FAILCRITICALERRORS});
    lastStart = {};
    {
        const ImportOverride note("CreateProcessA", reinterpret_cast<void*>(NoteStart));
        CalliSCSIConfigExe();
    }
    EXPECT_EQ(lastStart.errorMode, UINT{SEM_NOOPENFILEERRORBOX});
    EXPECT_EQ(CurrentErrorMode(), UINT{SEM_NOOPENFILEERRORBOX | SEM_FAILCRITICALERRORS});
    SetErrorMode(before);
}
