// The system restore point around a run.

#include <gmock/gmock.h>

#include <memory>

#include "Adapter.h"
#include "EmulatedSystem.h"
#include "Environment.h"
#include "OwnInfs.h"
#include "ProgramWindows.h"
#include "RegistryKeys.h"
#include "RestartWatch.h"

namespace {
using testing::ElementsAre;
using testing::IsSupersetOf;

constexpr char kDevice[] = "VEN_5D1A&DEV_7A01&SUBSYS_00115D1A&REV_03";
constexpr size_t kDescriptionBytes = 512;

// The text byte for byte in the wide field, and zeros after it.
std::string DescriptionInHex()
{
    std::string bytes = ResourceText(17);
    bytes.resize(kDescriptionBytes, '\0');
    constexpr char kDigits[] = "0123456789ABCDEF";
    std::string hex;
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        hex += kDigits[byte >> 4];
        hex += kDigits[byte & 15];
    }
    return hex;
}

std::string RestorePointLine(const std::string& event, const std::string& sequence)
{
    return "SRSetRestorePointW event=" + event + " type=10 sequence=" + sequence + " description=" + DescriptionInHex();
}

class RestorePoint : public DoubleRun
{
protected:
    RestorePoint() { WriteInf("one.inf", InfFor(kDevice)); }

    // The restore-point service's library beside the program, in place of the system's own.
    void UseServiceDouble() { Folder().UseDouble("srclient.dll"); }

    const Adapter m_adapter{kDevice};
    const NativeLibrary m_native{"srclient"};
};

TEST_F(RestorePoint, IsBegunBeforeTheFirstInstallAndEndedUnderItsNumberAfterTheLast)
{
    UseServiceDouble();
    Folder().Answer("srclient", "Sequence", "4711");

    const FinishedRun run = RunMorvix("/s /nr");

    EXPECT_EQ(run.exitCode, 0);
    EXPECT_THAT(
        Folder().Journal(),
        ElementsAre("DllGetClassFactoryObject ISysProberInterfaceFactory", "CreateSysProber",
                    "SysProberFactory Release", "IdentifySystem 0x00000000", "SysProber Release",
                    RestorePointLine("102", "0"), "DllGetClassFactoryObject IDriverInstallInterfaceFactory",
                    "CreateDriverInstall family=[Windows Vista] inf=[] id=[]", "DriverInstallFactory Release",
                    InstallLine("Inf\\one.inf", kDevice), "DriverInstall Release", RestorePointLine("103", "4711")));
    EXPECT_THAT(run.Between("CoInitialize", "Exiting BeginRestorePoint"),
                ElementsAre("CoInitialize", "Entering BeginRestorePoint", "Entering - GetLanguageSpecificString",
                            "Successfully started the system restore point", "Exiting BeginRestorePoint"));
    EXPECT_THAT(run.Between("Entering EndRestorePoint", "Exit -> InstallDrivers()\n"),
                ElementsAre("Entering EndRestorePoint", "Exiting EndRestorePoint", "Exit -> InstallDrivers()\n"));
}

TEST_F(RestorePoint, ThatCannotBeEndedIsTraced)
{
    UseServiceDouble();
    Folder().Answer("srclient", "Sequence", "7");
    Folder().Answer("srclient", "FailEnd", "1");

    const FinishedRun run = RunMorvix("/s /nr");

    EXPECT_EQ(run.exitCode, 0);
    EXPECT_THAT(run.Between("Entering EndRestorePoint", "Exit -> InstallDrivers()\n"),
                ElementsAre("Entering EndRestorePoint", "Call to restore point (END_NESTED_SYSTEM_CHANGE) failed!",
                            "Exiting EndRestorePoint", "Exit -> InstallDrivers()\n"));
}

TEST_F(RestorePoint, ThatTheDisabledServiceRefusesIsTracedAndTheRunInstalls)
{
    UseServiceDouble();
    Folder().Answer("srclient", "Fail", "1");
    Folder().Answer("srclient", "Status", "1058");

    const FinishedRun run = RunMorvix("/s /nr");

    EXPECT_EQ(run.exitCode, 0);
    EXPECT_THAT(Folder().JournalLines("SRSetRestorePointW"), ElementsAre(RestorePointLine("102", "0")));
    EXPECT_THAT(run.Between("CoInitialize", "Exiting BeginRestorePoint"),
                ElementsAre("CoInitialize", "Entering BeginRestorePoint", "Entering - GetLanguageSpecificString",
                            "call to restore point function failed!", "The service does not exist",
                            "Exiting BeginRestorePoint"));
    EXPECT_FALSE(run.Traced("Entering EndRestorePoint"));
    EXPECT_THAT(Installs(), ElementsAre(InstallLine("Inf\\one.inf", kDevice)));
}

TEST_F(RestorePoint, ThatIsRefusedForAnotherReasonIsTracedWithoutTheReason)
{
    UseServiceDouble();
    Folder().Answer("srclient", "Fail", "1");
    Folder().Answer("srclient", "Status", "5");

    const FinishedRun run = RunMorvix("/s /nr");

    EXPECT_TRUE(run.Traced("call to restore point function failed!"));
    EXPECT_FALSE(run.Traced("The service does not exist"));
    EXPECT_THAT(Installs(), ElementsAre(InstallLine("Inf\\one.inf", kDevice)));
}

TEST_F(RestorePoint, IsSkippedWhereTheLibraryCannotBeLoaded)
{
    // A file that is not a library, where the system searches first.
    Folder().Write("srclient.dll", "no library");

    const FinishedRun run = RunMorvix("/s /nr");

    EXPECT_EQ(run.exitCode, 0);
    EXPECT_THAT(
        run.Between("CoInitialize", "Exiting BeginRestorePoint"),
        ElementsAre("CoInitialize", "LoadLibrary failed!", "Entering BeginRestorePoint", "Exiting BeginRestorePoint"));
    EXPECT_FALSE(run.Traced("Entering EndRestorePoint"));
    EXPECT_THAT(Installs(), ElementsAre(InstallLine("Inf\\one.inf", kDevice)));
}

TEST_F(RestorePoint, IsSkippedWhereTheLibraryLacksTheFunction)
{
    Folder().UseDouble("NetInstWithoutExport.dll", "srclient.dll");

    const FinishedRun run = RunMorvix("/s /nr");

    EXPECT_EQ(run.exitCode, 0);
    EXPECT_THAT(run.Between("CoInitialize", "Exiting BeginRestorePoint"),
                ElementsAre("CoInitialize", "Failed to find SRSetRestorePointW.", "Entering BeginRestorePoint",
                            "Exiting BeginRestorePoint"));
    EXPECT_THAT(Installs(), ElementsAre(InstallLine("Inf\\one.inf", kDevice)));
}

TEST_F(RestorePoint, IsEndedInARunThatRestartsToo)
{
    UseServiceDouble();
    Folder().Answer("srclient", "Sequence", "4711");
    const RestartWatch restarts;

    const FinishedRun run = RunMorvix("/s /r");

    EXPECT_EQ(run.exitCode, 0);
    EXPECT_TRUE(restarts.WaitForRefusal());
    EXPECT_EQ(run.Count("Entering - RestartMachine"), 1u);
    EXPECT_THAT(Folder().JournalLines("SRSetRestorePointW"),
                ElementsAre(RestorePointLine("102", "0"), RestorePointLine("103", "4711")));
    EXPECT_EQ(run.Count("Entering EndRestorePoint"), 1u);
}

// A restore point whose end lasts until the test releases it, and a machine that refuses to restart.
class SlowRestorePoint : public RestorePoint
{
protected:
    SlowRestorePoint()
    {
        UseServiceDouble();
        Folder().Answer("srclient", "Sequence", "9");
        Folder().Answer("srclient", "HoldEnd", "1");
    }

    void LetItEnd() { Folder().Write("srclient.release", ""); }

    void WaitUntilItEnds(const ProgramRun& run)
    {
        run.WaitForTrace("Entering EndRestorePoint");
        while (Folder().JournalLines("SRSetRestorePointW event=103").empty() && run.StillRuns()) {
            Sleep(20);
        }
    }

    // A program that was about to restart without waiting would do so in this time.
    static bool StaysWithoutARestart(const ProgramRun& run)
    {
        Sleep(1000);
        return !run.SoFar().Traced("Entering - RestartMachine");
    }

    static bool AnswersSentMessages(const ProgressWindow& window)
    {
        DWORD_PTR answer = 0;
        return SendMessageTimeoutA(window.Window(), WM_NULL, 0, 0, SMTO_ABORTIFHUNG, 10000, &answer) != 0;
    }

    const RestartWatch m_restarts;
};

enum class RestartBy
{
    Option,
    Button,
    Countdown,
};

class SlowRestorePointBeforeTheRestart : public SlowRestorePoint, public testing::WithParamInterface<RestartBy>
{
protected:
    std::unique_ptr<ProgramRun> Start()
    {
        if (GetParam() == RestartBy::Option) {
            return StartMorvix("/s /r");
        }
        // The Windows 98 family offers the restart whatever was found.
        CreateRegistryKey(m_devices.Path() + "\\PCI");
        Folder().Answer("NetInst", "Family", "Windows 98");
        return StartMorvix("");
    }

    static void Confirm(const ProgressWindow& window)
    {
        if (GetParam() != RestartBy::Option) {
            window.WaitUntilOffered(IDOK);
            window.Press(IDOK);
            window.WaitUntilOffered(ProgressWindow::kRestartNow);
        }
    }

    static void AskForRestart(const ProgressWindow& window)
    {
        constexpr int kTicks = 21;
        if (GetParam() == RestartBy::Button) {
            window.Press(ProgressWindow::kRestartNow);
        }
        for (int tick = 0; GetParam() == RestartBy::Countdown && tick < kTicks; ++tick) {
            PostMessageA(window.Window(), WM_TIMER, 0, 0);
        }
    }

    const ScratchRegistryKey m_devices{"Enum"};
};

std::string NameOf(const testing::TestParamInfo<RestartBy>& row)
{
    constexpr std::array kNames = {"OfTheOption", "OfTheButton", "OfTheCountdown"};
    return kNames[static_cast<std::size_t>(row.param)];
}

INSTANTIATE_TEST_SUITE_P(Restart, SlowRestorePointBeforeTheRestart,
                         testing::Values(RestartBy::Option, RestartBy::Button, RestartBy::Countdown), NameOf);

TEST_P(SlowRestorePointBeforeTheRestart, IsEndedWhileSentMessagesAreAnswered)
{
    const auto run = Start();
    const ProgressWindow window(*run);
    Confirm(window);
    WaitUntilItEnds(*run);
    AskForRestart(window);
    EXPECT_TRUE(StaysWithoutARestart(*run));
    EXPECT_TRUE(AnswersSentMessages(window));
    LetItEnd();
    run->WaitForTrace("Entering - RestartMachine");

    EXPECT_THAT(run->SoFar().Between("Entering EndRestorePoint", "Entering - RestartMachine"),
                IsSupersetOf({"Exiting EndRestorePoint", "Exit -> InstallDrivers()\n"}));
    EXPECT_TRUE(m_restarts.WaitForRefusal());
}

TEST_F(SlowRestorePoint, ThatNeverEndsDoesNotKeepTheMachineFromRestarting)
{
    const auto run = StartMorvix("/s /r");
    WaitUntilItEnds(*run);
    run->WaitForTrace("Entering - RestartMachine");

    EXPECT_FALSE(run->SoFar().Traced("Exiting EndRestorePoint"));
    EXPECT_TRUE(m_restarts.WaitForRefusal());
}
} // namespace
