// The complete debugger output of runs, and switching it during a run.

#include <gmock/gmock.h>

#include <memory>

#include "Adapter.h"
#include "EmulatedSystem.h"
#include "KitAdapters.h"
#include "OwnInfs.h"
#include "TraceFile.h"

namespace {
constexpr char kFirstDevice[] = "VEN_5D1A&DEV_7A01&SUBSYS_00115D1A&REV_03";
constexpr char kSecondDevice[] = "VEN_5D1A&DEV_7A02&SUBSYS_00115D1A&REV_03";

class WholeTrace : public CleanMachine
{
protected:
    WholeTrace()
    {
        Folder().UseDouble("srclient.dll");
        Folder().Answer("srclient", "Sequence", "1");
    }

    const NativeLibrary m_native{"srclient"};
    const EmulatedSystem m_windows7{{nullptr, "6.1", "7601", "WinNT"}};
};

TEST_F(WholeTrace, OfASilentRunWithTwoAdaptersIsTheKeptOne)
{
    const Adapter first(kKitAdapters[0].deviceId);
    const Adapter second(kKitAdapters[1].deviceId);

    const FinishedRun run = RunMorvix("/s /nr");

    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(DifferenceFromKeptTrace("silent-two-adapters.txt", Folder(), WithoutTheMachinesOwnDevices(run.lines)),
              "");
}

TEST_F(WholeTrace, OfASilentRunWithoutAnAdapterIsTheKeptOne)
{
    const FinishedRun run = RunMorvix("/s /nr");

    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(DifferenceFromKeptTrace("silent-no-adapter.txt", Folder(), WithoutTheMachinesOwnDevices(run.lines)), "");
}

class TraceSwitch : public DoubleRun
{
protected:
    TraceSwitch() { WriteInf("one.inf", InfText({.ids = {kFirstDevice, kSecondDevice}})); }
    const Adapter m_first{kFirstDevice};
    const Adapter m_second{kSecondDevice};
};

TEST_F(TraceSwitch, DeletingTheDebugKeyDuringTheRunEndsTheTraceAtOnce)
{
    Folder().Answer("NetInst", "DebugKey1", "delete");

    const FinishedRun run = RunMorvix("/s /nr");

    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(Installs().size(), 2u);
    ASSERT_FALSE(run.lines.empty());
    EXPECT_EQ(run.lines.back(), "Morvix: 2K/XP install: PCI\\" + std::string(kFirstDevice) + ", " +
                                    InfInUpperCase("Inf\\one.inf") + "\n");
}

TEST_F(TraceSwitch, CreatingTheDebugKeyDuringTheRunBeginsTheTraceAtOnce)
{
    SwitchTrace(false);
    Folder().Answer("NetInst", "DebugKey1", "create");

    const FinishedRun run = RunMorvix("/s /nr");

    EXPECT_EQ(run.exitCode, 0);
    ASSERT_FALSE(run.lines.empty());
    EXPECT_EQ(run.lines.front(), "Morvix:  2K/XP UpdateDriver() returned: 0 ---> GetLastError = 0\n");
    EXPECT_EQ(run.Count("device: " + std::string(kSecondDevice) + "\n"), 1u);
    EXPECT_EQ(run.Count("device: " + std::string(kFirstDevice) + "\n"), 0u);
}

TEST_F(TraceSwitch, OffAndOnAgainLeavesOutWhatHappenedBetween)
{
    Folder().Answer("NetInst", "DebugKey1", "delete");
    Folder().Answer("NetInst", "DebugKey2", "create");

    const FinishedRun run = RunMorvix("/s /nr");

    EXPECT_EQ(run.Count("device: " + std::string(kFirstDevice) + "\n"), 1u);
    EXPECT_EQ(run.Count("device: " + std::string(kSecondDevice) + "\n"), 0u);
    EXPECT_EQ(run.Count(" 2K/XP UpdateDriver() returned: 0 ---> GetLastError = 0\n"), 1u);
    EXPECT_TRUE(run.Traced("Exit -> InstallDrivers()\n"));
}
} // namespace
