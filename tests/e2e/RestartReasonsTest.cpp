// The three outcomes of a run that need a restart, and the effect of the options on it.

#include <gmock/gmock.h>

#include <ostream>

#include "EmulatedSystem.h"
#include "Environment.h"
#include "ProgramWindows.h"
#include "StorageBoot.h"

namespace {
using testing::ElementsAre;

constexpr DWORD kMessageLimit = 10000;
constexpr uint32_t kNdis52 = 0x00050002;
constexpr char kQdatInf[] = "qdatdma.inf";
constexpr char kQdatInstalled[] = "QDATINSTALLED\n";
constexpr char kPendingBegun[] = "Entering isRegEntryTAVUnstl";
constexpr char kUninstaller[] = R"(\??\C:\Windows\system32\Tavunstl.exe)";
constexpr char kFirstOperation[] = R"(\??\C:\Windows\Temp\one.tmp)";
constexpr char kLastOperation[] = R"(\??\C:\Windows\Temp\two.tmp)";

enum class Reason
{
    DmaEngine,
    IScsiBoot,
    FcoeBoot,
};

void PrintTo(Reason reason, std::ostream* out)
{
    constexpr const char* kNames[] = {"DmaEngine", "IScsiBoot", "FcoeBoot"};
    *out << kNames[static_cast<int>(reason)];
}

// A machine on which a run has exactly one reason for a restart, and a list of pending file operations with the
// uninstaller in it.
class RestartReason : public StorageRun
{
protected:
    void LayDown(Reason reason)
    {
        switch (reason) {
            case Reason::DmaEngine:
                LayDownDmaEngine(kNdis52);
                break;
            case Reason::IScsiBoot:
                WriteInf("one.inf", InfFor(kFirstDevice));
                m_driver = StartAdapterDriver();
                m_driver->AnswerBootMode(kFirstInstance, 2);
                // The first three of the four conditions.
                UseIScsiLibrary("6", "1", "6000");
                m_initiator.emplace(std::nullopt);
                break;
            case Reason::FcoeBoot:
                WriteInf("one.inf", InfFor(kFirstDevice));
                UseFcoeLibrary("1");
                SetExtensionVersion("16.2");
                break;
        }
    }

    void LayDownDmaEngine(std::optional<uint32_t> ndisVersion)
    {
        WriteInf(kQdatInf, InfFor(kFirstDevice));
        m_driver = StartAdapterDriver(ndisVersion);
    }

    // What the reason depends on was really found.
    static void ExpectFound(Reason reason, const FinishedRun& run)
    {
        EXPECT_EQ(run.Traced(kQdatInstalled), reason == Reason::DmaEngine);
        EXPECT_EQ(run.Traced("Found iSCSI adapter"), reason == Reason::IScsiBoot);
        EXPECT_EQ(run.Traced("Exhausted list of PCI devices"), reason != Reason::FcoeBoot);
    }

    static void ExpectUninstallerTakenOffTheList(const FinishedRun& run)
    {
        EXPECT_THAT(DecidedBetween(run, kPendingBegun, "Successfully removed TAVUnstl from registry"),
                    ElementsAre(kPendingBegun, "Successfully removed TAVUnstl from registry"));
        EXPECT_THAT(PendingOperations::Entries(), ElementsAre(kFirstOperation, kLastOperation));
    }

    static void ExpectUninstallerStillOnTheList(const FinishedRun& run)
    {
        EXPECT_FALSE(run.Traced(kPendingBegun));
        EXPECT_THAT(PendingOperations::Entries(), ElementsAre(kFirstOperation, kUninstaller, kLastOperation));
    }

    const InstalledAdapter m_adapter{kFirstDevice, "9001", kFirstInstance};
    const PendingOperations m_pending{{kFirstOperation, kUninstaller, kLastOperation}};
    std::unique_ptr<TestAdapterDriver> m_driver;
    std::optional<IScsiInitiator> m_initiator;
};

class EachReason : public RestartReason, public testing::WithParamInterface<Reason>
{
protected:
    EachReason() { LayDown(GetParam()); }

    // Lets the user go through the run until the program asks its question, and answers it.
    FinishedRun RunInteractively(int answer)
    {
        const auto run = StartMorvix("");
        const ProgressWindow window(*run);
        const int lastButton = GetParam() == Reason::FcoeBoot ? ProgressWindow::kRestartLater : ProgressWindow::kFinish;
        window.WaitUntilOffered(IDOK);
        window.Press(IDOK);
        window.WaitUntilOffered(lastButton);
        window.Press(lastButton);
        const MessageBoxSeen question = WaitForMessageBox(*run);
        EXPECT_EQ(question.text, ResourceText(22));
        EXPECT_EQ(question.caption, ResourceText(1008));
        EXPECT_EQ(question.owner, nullptr);
        EXPECT_FALSE(run->SoFar().Traced("Entering - RestartMachine"));
        PressInBox(question, answer);
        return run->Finish();
    }
};

TEST_P(EachReason, RestartsASilentRun)
{
    const FinishedRun run = RunMorvix("/s");

    EXPECT_EQ(run.exitCode, 0);
    ExpectFound(GetParam(), run);
    ExpectUninstallerTakenOffTheList(run);
    ExpectRestart(run);
    ExpectNoRebootNeeded();
}

TEST_P(EachReason, IsSuppressedBySlashNr)
{
    const FinishedRun run = RunMorvix("/s /nr");

    EXPECT_EQ(run.exitCode, 0);
    ExpectFound(GetParam(), run);
    ExpectUninstallerStillOnTheList(run);
    ExpectNoRestart(run);
    ExpectNoRebootNeeded();
}

TEST_P(EachReason, IsLeftToTheInstallerByItsSteps)
{
    for (const char* options : {"/s /m", "/m"}) {
        SCOPED_TRACE(options);

        // The run begins by deleting the record of an earlier one.
        const FinishedRun run = RunMorvix(options);

        EXPECT_EQ(run.exitCode, 0);
        ExpectFound(GetParam(), run);
        EXPECT_EQ(run.Count(kPendingBegun), 1u);
        EXPECT_THAT(PendingOperations::Entries(), ElementsAre(kFirstOperation, kLastOperation));
        ExpectRebootNeeded();
        ExpectNoRestart(run);
    }
}

TEST_P(EachReason, RestartsAnInteractiveRunWhenTheUserSaysYes)
{
    const FinishedRun run = RunInteractively(IDYES);

    EXPECT_EQ(run.exitCode, 0);
    ExpectFound(GetParam(), run);
    ExpectUninstallerTakenOffTheList(run);
    ExpectRestart(run);
    ExpectNoRebootNeeded();
}

TEST_P(EachReason, LeavesAnInteractiveRunAloneWhenTheUserSaysNo)
{
    const FinishedRun run = RunInteractively(IDNO);

    EXPECT_EQ(run.exitCode, 0);
    ExpectUninstallerTakenOffTheList(run);
    ExpectNoRestart(run);
    ExpectNoRebootNeeded();
}

class EndingRun : public RestartReason
{
};

TEST_F(EndingRun, StartsNoCountdownWhenARestartIsOfferedWhileTheQuestionWaits)
{
    LayDown(Reason::FcoeBoot);
    const auto run = StartMorvix("");
    const ProgressWindow window(*run);
    window.WaitUntilOffered(IDOK);
    window.Press(IDOK);
    window.WaitUntilOffered(ProgressWindow::kRestartLater);
    window.Press(ProgressWindow::kRestartLater);
    const MessageBoxSeen question = WaitForMessageBox(*run);
    const std::string status = window.TextOf(ProgressWindow::kStatus);
    ShowWindow(GetDlgItem(window.Window(), ProgressWindow::kRestartNow), SW_HIDE);

    DWORD_PTR ignored = 0;
    ASSERT_NE(SendMessageTimeoutA(window.Window(), RegisterWindowMessageA("Norda Morvix Restart Now"), 0, 0,
                                  SMTO_ABORTIFHUNG, kMessageLimit, &ignored),
              0);
    EXPECT_FALSE(window.Offers(ProgressWindow::kRestartNow));
    // The countdown would show itself with its first tick, after a second.
    Sleep(1500);
    EXPECT_EQ(window.TextOf(ProgressWindow::kStatus), status);
    PressInBox(question, IDNO);
    ExpectNoRestart(run->Finish());
}

INSTANTIATE_TEST_SUITE_P(Reasons, EachReason, testing::Values(Reason::DmaEngine, Reason::IScsiBoot, Reason::FcoeBoot),
                         testing::PrintToStringParamName());

TEST_F(RestartReason, MissingLeavesTheMachineAndThePendingOperationsAlone)
{
    WriteInf("one.inf", InfFor(kFirstDevice));
    m_driver = StartAdapterDriver(kNdis52);

    const FinishedRun run = RunMorvix("/s");

    EXPECT_EQ(run.exitCode, 0);
    EXPECT_THAT(Installs(), ElementsAre(InstallLine("Inf\\one.inf", kFirstDevice)));
    ExpectUninstallerStillOnTheList(run);
    ExpectNoRestart(run);
    ExpectNoRebootNeeded();
}

TEST_F(RestartReason, IsNotADmaEngineThatNothingCouldInstall)
{
    LayDown(Reason::DmaEngine);
    Folder().Answer("NetInst", "DriverInstallFactoryStatus", "0x80004005");

    const FinishedRun run = RunMorvix("/s");

    EXPECT_EQ(run.exitCode, 0);
    EXPECT_TRUE(run.Traced(kQdatInstalled));
    ExpectUninstallerStillOnTheList(run);
    ExpectNoRestart(run);
    ExpectNoRebootNeeded();
}

struct StackCase
{
    const char* name;
    std::optional<SystemVersion> system; // the one that runs, a 6.1 workstation, when not given
    std::optional<uint32_t> ndisVersion;
    bool restart;
};

void PrintTo(const StackCase& tested, std::ostream* out)
{
    *out << tested.name;
}

class DmaEngine : public RestartReason, public testing::WithParamInterface<StackCase>
{
};

TEST_P(DmaEngine, NeedsARestartWhereTheNetworkStackUsesIt)
{
    LayDownDmaEngine(GetParam().ndisVersion);
    std::optional<EmulatedSystem> emulated;
    if (GetParam().system) {
        emulated.emplace(*GetParam().system);
    }

    const FinishedRun run = RunMorvix("/s /m");

    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.Count(kQdatInstalled), 1u);
    if (GetParam().restart) {
        ExpectRebootNeeded();
        ExpectUninstallerTakenOffTheList(run);
    } else {
        ExpectNoRebootNeeded();
        ExpectUninstallerStillOnTheList(run);
    }
    ExpectNoRestart(run);
}

INSTANTIATE_TEST_SUITE_P(
    Systems, DmaEngine,
    testing::Values(
        StackCase{"WindowsXP", SystemVersion{"winxp", "5.1", "2600", "WinNT"}, 0x00060000, false},
        StackCase{"WindowsXPx64", SystemVersion{"winxp64", "5.2", "3790", "WinNT"}, 0x00060000, false},
        StackCase{"WindowsServer2003", SystemVersion{"win2003", "5.2", "3790", "ServerNT"}, kNdis52, true},
        StackCase{"WindowsVista", SystemVersion{"vista", "6.0", "6002", "WinNT"}, 0x00060000, false},
        StackCase{"WindowsServer2008", SystemVersion{"win2008", "6.0", "6002", "ServerNT"}, 0x00060000, true},
        // The 6.1 servers are deliberately left out.
        StackCase{"WindowsServer2008R2", SystemVersion{nullptr, "6.1", "7601", "ServerNT"}, 0x00060014, false},
        StackCase{"Windows8", SystemVersion{"win8", "6.2", "9200", "WinNT"}, 0x0006001E, true}),
    [](const testing::TestParamInfo<StackCase>& tested) { return std::string(tested.param.name); });

INSTANTIATE_TEST_SUITE_P(NetworkStacks, DmaEngine,
                         testing::Values(StackCase{"Missing", std::nullopt, std::nullopt, false},
                                         StackCase{"Version4_9", std::nullopt, 0x00040009, false},
                                         StackCase{"Version5_1", std::nullopt, 0x00050001, false},
                                         StackCase{"Version6_0", std::nullopt, 0x00060000, true}),
                         [](const testing::TestParamInfo<StackCase>& tested) {
                             return std::string(tested.param.name);
                         });
} // namespace
