#include "RunOfAnEmptyMachine.h"

#include <functional>
#include <stdexcept>

#include "Bundle.h"
#include "Environment.h"
#include "Machine.h"
#include "MachineLines.h"
#include "ProgramWindows.h"
#include "RegistryKeys.h"
#include "RunFolder.h"
#include "ShownTexts.h"
#include "TraceFile.h"
#include "WindowWatch.h"

namespace {
constexpr char kMakerKey[] = R"(SOFTWARE\Norda)";
constexpr char kTraceKey[] = R"(SOFTWARE\Norda\Basedrivers\Debug)";
// A restore point alone may take minutes.
constexpr DWORD kLimit = 600000;

/// Waits for what a slow machine may need longer for than a run's own limit.
bool WaitUntil(const std::function<bool()>& condition)
{
    for (const DWORD start = GetTickCount(); GetTickCount() - start < kLimit; Sleep(50)) {
        if (condition()) {
            return true;
        }
    }
    return false;
}

/// The lines that are the same on every machine without an adapter.
std::vector<std::string> OwnLines(const std::vector<std::string>& lines)
{
    return WithoutMachineLines(WithoutTheMachinesOwnDevices(lines));
}

FinishedRun EndOf(ProgramRun& run)
{
    WaitUntil([&] { return !run.StillRuns(); });
    return run.Finish();
}
} // namespace

TraceKey::TraceKey() : m_makerWasThere(RegistryKeyExists(kMakerKey)), m_traceWasOn(RegistryKeyExists(kTraceKey))
{
    CreateRegistryKey(kTraceKey);
}

TraceKey::~TraceKey()
{
    if (!m_makerWasThere) {
        DeleteRegistryTree(kMakerKey);
    } else if (!m_traceWasOn) {
        DeleteRegistryTree(kTraceKey);
    }
}

EmptyMachine::EmptyMachine() = default;

void EmptyMachine::SetUp()
{
    if (const auto why = WhyNoMachineWithoutAdapter()) {
        GTEST_SKIP() << NotHere(*why);
    }
}

EmptyMachine::Results EmptyMachine::ResultValues()
{
    Results values;
    for (const char* name : {"Install", "Version", "Reboot", "RebootNeeded"}) {
        values[name] = ReadRegistryText(kResultsKey, name);
    }
    return values;
}

FinishedRun EmptyMachine::RunSilentlyIn(const std::string& folder)
{
    DebugOutput output;
    const std::string program = folder + "\\Morvix.exe";
    ProgramRun run(output, program, program, "/s /nr", folder);
    return EndOf(run);
}

void EmptyMachine::ExpectSilentRun(int exitCode, const std::vector<std::string>& lines, const std::string& folder) const
{
    EXPECT_EQ(exitCode, 0);
    EXPECT_EQ(DifferenceFromKeptTrace("silent-no-adapter.txt", folder, lines, OwnLines), "");
    EXPECT_EQ(ResultValues(), m_resultsBefore);
}

void EmptyMachine::ExpectSilentRun(const ChildReport& report, const std::string& folder) const
{
    ASSERT_EQ(report.At("error"), "<none>");
    ASSERT_NE(report.At("exit"), "<none>");
    ExpectSilentRun(std::stoi(report.At("exit")), report.lines, folder);
}

void EmptyMachine::ExpectDialog(const std::string& picture)
{
    const RunFolder folder;
    DebugOutput output;
    ProgramRun run(output, folder.At("Morvix.exe"), folder.At("Morvix.exe"), "", folder.Path());
    const ProgressWindow window(run);
    window.WaitUntilOffered(IDOK);
    EXPECT_TRUE(window.Visible());
    EXPECT_EQ(window.Title(), ShownText(1008));
    EXPECT_EQ(window.TextOf(ProgressWindow::kStatus), ShownText(1));
    EXPECT_EQ(window.TextOf(IDCANCEL), ShownText(15));
    RECT place{};
    RECT screen{};
    GetWindowRect(window.Window(), &place);
    SystemParametersInfoA(SPI_GETWORKAREA, 0, &screen, 0);
    EXPECT_TRUE(place.left >= screen.left && place.top >= screen.top && place.right <= screen.right &&
                place.bottom <= screen.bottom)
        << "the dialog reaches beyond the screen: " << place.left << " " << place.top << " " << place.right << " "
        << place.bottom;
    LeavePicture(picture + "-welcome");

    window.Press(IDOK);
    ASSERT_TRUE(WaitUntil([&] { return window.Offers(ProgressWindow::kFinish) || !run.StillRuns(); }));
    EXPECT_EQ(window.TextOf(ProgressWindow::kStatus), ShownText(5));
    LeavePicture(picture + "-done");
    window.Press(ProgressWindow::kFinish);
    EXPECT_EQ(EndOf(run).exitCode, 0);
    EXPECT_FALSE(IsWindow(window.Window()));
}
