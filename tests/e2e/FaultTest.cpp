// Defective machines and folders: every run ends with a trace and an exit code that show it.

#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <cstdio>

#include "Adapter.h"
#include "CleanMachine.h"
#include "EmulatedSystem.h"
#include "Environment.h"
#include "Handles.h"
#include "OwnInfs.h"
#include "ProgramWindows.h"
#include "RegistryKeys.h"

namespace {
using testing::Contains;
using testing::Not;

constexpr int kNotStarted = -1;
constexpr char kRefused[] = "detected previous instance of application or Tavisk is active; unable to continue\n";
constexpr char kProductOptions[] = R"(System\CurrentControlSet\Control\ProductOptions)";

class Fault : public CleanMachine
{
};

class DeviceFault : public DoubleRun
{
};

/// Programs inherit an error mode that lets the system report their crashes: the one of a test program does not.
class ErrorModeForTest
{
public:
    ErrorModeForTest() : m_before(SetErrorMode(0)) {}
    ~ErrorModeForTest() { SetErrorMode(m_before); }
    ErrorModeForTest(const ErrorModeForTest&) = delete;
    ErrorModeForTest& operator=(const ErrorModeForTest&) = delete;

private:
    UINT m_before;
};

class WindowsNT4 : public CleanMachine
{
protected:
    void ExpectRefusalWithABox()
    {
        const std::string text = ResourceText(13);
        const auto run = StartMorvix("/s");
        const MessageBoxSeen box = WaitForMessageBox(*run);
        EXPECT_EQ(box.caption, "Morvix");
        EXPECT_EQ(box.text, text);
        EXPECT_EQ(box.owner, nullptr);
        PressInBox(box, IDOK);
        const FinishedRun finished = run->Finish();
        EXPECT_EQ(finished.exitCode, kNotStarted);
        const std::vector<std::string> messages = finished.Messages();
        EXPECT_THAT(messages, Contains("Entering - IsTaviskActive"));
        EXPECT_THAT(messages, Contains("Entering - IsNT4TerminalServer"));
        ASSERT_GE(messages.size(), 2u);
        EXPECT_EQ(messages[messages.size() - 2], text);
        EXPECT_EQ(messages.back(), kRefused);
    }

private:
    EmulatedSystem m_system{{"nt40", "4.0", "1381", "WinNT"}};
};

TEST_F(WindowsNT4, RunningManagementSoftwareStopsEvenASilentRunWithABox)
{
    const UniqueHandle running(CreateMutexA(nullptr, FALSE, "TaviskMutex"));
    ExpectRefusalWithABox();
}

TEST_F(WindowsNT4, OnATerminalServerItsMutexIsLookedForInTheGlobalNamespace)
{
    const SavedRegistryValue suite(kProductOptions, "ProductSuite");
    SetRegistryList(kProductOptions, "ProductSuite", {"Small Business", "Terminal Server"});
    const UniqueHandle running(CreateMutexA(nullptr, FALSE, R"(Global\TaviskMutex)"));
    ExpectRefusalWithABox();
}

TEST_F(Fault, ADamagedResourceLibraryEndsTheRunWithoutABox)
{
    Folder().Write("MorvixRes.dll", "no library");
    for (const char* arguments : {"", "/s /nr"}) {
        const FinishedRun run = RunMorvix(arguments);
        EXPECT_EQ(run.exitCode, kNotStarted) << arguments;
        EXPECT_TRUE(run.Traced("unable to load: " + Folder().At("MorvixRes.dll") + "\n")) << arguments;
    }
}

TEST_F(Fault, AResourceLibraryWithoutTheDialogEndsTheRun)
{
    Folder().UseDouble("srclient.dll", "MorvixRes.dll");
    const FinishedRun run = RunMorvix("/s /nr");
    EXPECT_EQ(run.exitCode, kNotStarted);
    EXPECT_EQ(run.Messages().back(), "unable to create the dialog\n");
}

TEST_F(DeviceFault, ADeviceNameWithoutARevisionThatNoInfListsEndsTheRunWithMinusOneAndItsTrace)
{
    WriteInf("other.inf", InfFor("VEN_5D1A&DEV_7A09"));
    const Adapter adapter("VEN_5D1A&DEV_7A44&SUBSYS_00015D1A");
    const FinishedRun run = RunMorvix("/s /nr");
    EXPECT_EQ(run.exitCode, -1);
    EXPECT_THAT(run.Messages(), Contains("Pass 2"));
    EXPECT_THAT(run.Messages(), Not(Contains("Pass 3")));
    EXPECT_TRUE(run.Messages().back().starts_with("unhandled fault: ")) << run.Messages().back();
}

/// A NetInst library that faults, and a debugger that the system starts for a crash, as its report of one.
class ProcessorFault : public DoubleRun
{
protected:
    ProcessorFault()
    {
        WriteInf("one.inf", InfFor(kDevice));
        CopyFileTo(DoublesFolder() + R"(\..\command_line_recorder.exe)", m_debugger);
        SetRegistryText(kCrashKey, "Debugger", "\"" + m_debugger + "\" %ld %ld");
        SetRegistryText(kCrashKey, "Auto", "1");
    }

    // The fault is raised in the named call of the library; everything that such a run must leave is expected.
    void ExpectTracedAndReported(const char* call, const char* fault, uint32_t code)
    {
        Folder().Answer("NetInst", "FaultIn", call);
        Folder().Answer("NetInst", "Fault", fault);
        const auto run = StartMorvix("/s /nr");
        const std::string processId = std::to_string(run->ProcessId());
        const FinishedRun finished = run->Finish();
        EXPECT_EQ(Folder().JournalLines("fault in "), std::vector<std::string>{std::string("fault in ") + call});
        EXPECT_EQ(static_cast<uint32_t>(finished.exitCode), code);
        std::array<char, 80> start{};
        std::snprintf(start.data(), start.size(), "unhandled fault: exception 0x%X at NetInst.dll+0x",
                      static_cast<unsigned>(code));
        EXPECT_THAT(finished.Messages().back(), testing::StartsWith(start.data()));
        const std::string journal = m_debugger + ".journal.txt";
        ASSERT_TRUE(FileExists(journal)) << "the system was not let report the crash";
        EXPECT_THAT(ReadFileBytes(journal), testing::HasSubstr("\" " + processId + " "));
    }

    static constexpr char kDevice[] = "VEN_5D1A&DEV_7A01&SUBSYS_00115D1A&REV_03";
    static constexpr char kCrashKey[] = R"(SOFTWARE\Microsoft\Windows NT\CurrentVersion\AeDebug)";

private:
    const Adapter m_adapter{kDevice};
    const ScratchDirectory m_folder;
    const std::string m_debugger = m_folder.At("debugger.exe");
    const SavedRegistryValue m_savedDebugger{kCrashKey, "Debugger"};
    const SavedRegistryValue m_savedAuto{kCrashKey, "Auto"};
    const ErrorModeForTest m_errorMode;
};

TEST_F(ProcessorFault, AnAccessViolationOnTheMainThreadIsTracedReportedAndTheExitCode)
{
    ExpectTracedAndReported("prober", "access", 0xC0000005);
}

TEST_F(ProcessorFault, AnAccessViolationOnTheInstallThreadIsTracedReportedAndTheExitCode)
{
    ExpectTracedAndReported("install", "access", 0xC0000005);
}

TEST_F(ProcessorFault, ADivisionByZeroOnTheMainThreadIsTracedReportedAndTheExitCode)
{
    ExpectTracedAndReported("prober", "division", 0xC0000094);
}

TEST_F(ProcessorFault, ADivisionByZeroOnTheInstallThreadIsTracedReportedAndTheExitCode)
{
    ExpectTracedAndReported("install", "division", 0xC0000094);
}
} // namespace
