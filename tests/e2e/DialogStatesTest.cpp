// The dialog while the installation works, when it fails and when it counts down, driven by keys, buttons and timers.

#include <gmock/gmock.h>

#include <array>
#include <memory>

#include "Adapter.h"
#include "EmulatedSystem.h"
#include "Environment.h"
#include "InstallerWindow.h"
#include "OwnInfs.h"
#include "ProgramWindows.h"
#include "RegistryKeys.h"
#include "RestartWatch.h"

namespace {
using testing::ElementsAre;
using testing::IsEmpty;

constexpr char kDevice[] = "VEN_5D1A&DEV_7A01&SUBSYS_00115D1A&REV_03";
constexpr int kActivityBar = 1010;
constexpr DWORD kMessageLimit = 10000;
constexpr WPARAM kCountdownTimer = 0;
constexpr WPARAM kCloseTimer = 1;
constexpr WPARAM kNobodysTimer = 7;
constexpr int kNoControl = 4711;

std::string ClassOf(HWND window)
{
    std::array<char, 64> name{};
    GetClassNameA(window, name.data(), static_cast<int>(name.size()));
    return name.data();
}

// Sends a message and waits until the dialog has handled it and everything posted before.
void Send(const ProgressWindow& window, UINT message, WPARAM wParam = 0, LPARAM lParam = 0)
{
    DWORD_PTR ignored = 0;
    ASSERT_NE(SendMessageTimeoutA(window.Window(), message, wParam, lParam, SMTO_ABORTIFHUNG, kMessageLimit, &ignored),
              0);
}

void PressKey(const ProgressWindow& window, int key)
{
    PostMessageA(window.Window(), WM_KEYDOWN, static_cast<WPARAM>(key), 0);
    PostMessageA(window.Window(), WM_KEYUP, static_cast<WPARAM>(key), 0);
}

// A program that was about to end would do so in this time.
bool StaysForASecond(const ProgramRun& run)
{
    const UniqueHandle process(OpenProcess(SYNCHRONIZE, FALSE, run.ProcessId()));
    return WaitForSingleObject(process.get(), 1000) == WAIT_TIMEOUT;
}

class DialogStates : public DoubleRun
{
protected:
    DialogStates() { WriteInf("one.inf", InfFor(kDevice)); }

    void HoldTheInstall() { Folder().Answer("NetInst", "HoldInstall1", "1"); }
    void ReleaseTheInstall() { Folder().Write("NetInst.release", ""); }

    // Returns when the install call has begun.
    void WaitForTheInstall(const ProgramRun& run)
    {
        run.WaitForTrace("==>installing driver(s)");
        while (Installs().empty() && run.StillRuns()) {
            Sleep(20);
        }
    }

    const Adapter m_adapter{kDevice};
};

TEST_F(DialogStates, WhileItWorksTheDialogNamesTheDeviceMovesItsBarAndOffersNoButton)
{
    HoldTheInstall();
    const auto run = StartMorvix("");
    const ProgressWindow window(*run);
    window.WaitUntilOffered(IDOK);
    EXPECT_FALSE(window.Offers(kActivityBar));
    window.Press(IDOK);
    WaitForTheInstall(*run);

    std::string text = ResourceText(10);
    EXPECT_EQ(window.TextOf(ProgressWindow::kStatus), text.replace(text.find("%s"), 2, kDeviceDescription));
    EXPECT_TRUE(window.Offers(kActivityBar));
    for (const int button :
         {IDOK, IDCANCEL, ProgressWindow::kFinish, ProgressWindow::kRestartNow, ProgressWindow::kRestartLater}) {
        EXPECT_FALSE(window.Offers(button)) << button;
    }
    ReleaseTheInstall();
    window.WaitUntilOffered(ProgressWindow::kFinish);
    window.WaitUntilGone(kActivityBar);
    window.Press(ProgressWindow::kFinish);
    EXPECT_EQ(run->Finish().exitCode, 0);
}

TEST_F(DialogStates, TheDialogsClassIsTheProgramsOwn)
{
    const auto run = StartMorvix("");
    const ProgressWindow window(*run);
    window.WaitUntilOffered(IDCANCEL);
    const HWND dialog = window.Window();
    EXPECT_EQ(ClassOf(dialog), "Morvix");
    // Redrawn when its size changes, and without a close box.
    EXPECT_EQ(GetClassLongPtrA(dialog, GCL_STYLE), 0x203u);
    EXPECT_EQ(GetClassLongPtrA(dialog, GCL_CBWNDEXTRA), 30u);
    window.Press(IDCANCEL);
    EXPECT_EQ(run->Finish().exitCode, 0);
}

TEST_F(DialogStates, ACommandCountsOnlyAsAClickOfAButtonItNames)
{
    const auto run = StartMorvix("");
    const ProgressWindow window(*run);
    window.WaitUntilOffered(IDOK);
    for (const int button : {IDOK, IDCANCEL, ProgressWindow::kFinish, ProgressWindow::kRestartLater}) {
        const auto control = reinterpret_cast<LPARAM>(GetDlgItem(window.Window(), button));
        Send(window, WM_COMMAND, MAKEWPARAM(button, BN_CLICKED), 0);
        Send(window, WM_COMMAND, MAKEWPARAM(button, BN_DBLCLK), control);
        Send(window, WM_COMMAND, MAKEWPARAM(button, BN_SETFOCUS), control);
    }
    Send(window, WM_COMMAND, 0, reinterpret_cast<LPARAM>(GetDlgItem(window.Window(), ProgressWindow::kStatus)));
    EXPECT_TRUE(StaysForASecond(*run));
    EXPECT_TRUE(window.Offers(IDOK));
    EXPECT_FALSE(run->SoFar().Traced("Entering - InstallThread"));
    // The button counts, not the number.
    Send(window, WM_COMMAND, MAKEWPARAM(kNoControl, BN_CLICKED),
         reinterpret_cast<LPARAM>(GetDlgItem(window.Window(), IDCANCEL)));
    EXPECT_EQ(run->Finish().exitCode, 0);
}

TEST_F(DialogStates, EscapeBeforeOkCancelsWithoutAnInstallation)
{
    const auto run = StartMorvix("");
    const ProgressWindow window(*run);
    window.WaitUntilOffered(IDCANCEL);
    PressKey(window, VK_ESCAPE);
    const FinishedRun finished = run->Finish();

    EXPECT_EQ(finished.exitCode, 0);
    EXPECT_FALSE(finished.Traced("Entering - InstallThread"));
    EXPECT_THAT(Installs(), IsEmpty());
}

TEST_F(DialogStates, ReturnStartsTheInstallationAndEndsItAtTheFinishButton)
{
    const auto run = StartMorvix("");
    const ProgressWindow window(*run);
    window.WaitUntilOffered(IDOK);
    PressKey(window, VK_RETURN);
    window.WaitUntilOffered(ProgressWindow::kFinish);
    window.WaitUntilFocused(ProgressWindow::kFinish);
    PressKey(window, VK_RETURN);
    const FinishedRun finished = run->Finish();

    EXPECT_EQ(finished.exitCode, 0);
    EXPECT_EQ(finished.Count("Entering - InstallThread"), 1u);
    EXPECT_THAT(Installs(), ElementsAre(InstallLine("Inf\\one.inf", kDevice)));
}

TEST_F(DialogStates, KeysNeitherStartASecondInstallationNorLeaveARunningOne)
{
    HoldTheInstall();
    const auto run = StartMorvix("");
    const ProgressWindow window(*run);
    window.WaitUntilOffered(IDOK);
    window.Press(IDOK);
    WaitForTheInstall(*run);
    for (const int key : {VK_RETURN, VK_ESCAPE, VK_SPACE, VK_RETURN}) {
        PressKey(window, key);
    }
    Send(window, WM_NULL);
    EXPECT_TRUE(StaysForASecond(*run));
    EXPECT_TRUE(window.Visible());
    ReleaseTheInstall();
    window.WaitUntilOffered(ProgressWindow::kFinish);
    window.Press(ProgressWindow::kFinish);
    const FinishedRun finished = run->Finish();

    EXPECT_EQ(finished.exitCode, 0);
    EXPECT_EQ(finished.Count("Entering - InstallThread"), 1u);
    EXPECT_THAT(Installs(), ElementsAre(InstallLine("Inf\\one.inf", kDevice)));
}

TEST_F(DialogStates, AnInstallerStepShowsTheDialogWithoutButtonsAndHidesThemOnEveryMessage)
{
    HoldTheInstall();
    const auto run = StartMorvix("/m");
    const ProgressWindow window(*run);
    WaitForTheInstall(*run);

    window.WaitUntilVisible();
    EXPECT_EQ(window.Title(), ResourceText(1008));
    EXPECT_TRUE(window.Offers(kActivityBar));
    for (const int button : {IDOK, IDCANCEL}) {
        const HWND control = GetDlgItem(window.Window(), button);
        EXPECT_FALSE(IsWindowVisible(control)) << button;
        EXPECT_FALSE(IsWindowEnabled(control)) << button;
        ShowWindow(control, SW_SHOW);
        Send(window, WM_NULL);
        EXPECT_EQ(GetWindowLongA(control, GWL_STYLE) & WS_VISIBLE, 0) << button;
    }
    ReleaseTheInstall();
    EXPECT_EQ(run->Finish().exitCode, 0);
}

TEST_F(DialogStates, ASilentRunAndASilentInstallerStepShowNoDialog)
{
    for (const char* options : {"/s /nr", "/s /m"}) {
        SCOPED_TRACE(options);
        DeleteFileA(Folder().At("journal.txt").c_str());
        DeleteFileA(Folder().At("NetInst.release").c_str());
        HoldTheInstall();
        const auto run = StartMorvix(options);
        const ProgressWindow window(*run);
        WaitForTheInstall(*run);
        EXPECT_FALSE(window.Visible());
        EXPECT_EQ(window.Title(), ResourceText(1008));
        ReleaseTheInstall();
        EXPECT_EQ(run->Finish().exitCode, 0);
    }
}

TEST_F(DialogStates, TheDialogBelongsToTheInstallersWindowIfThereIsOne)
{
    for (const bool hasInstaller : {true, false}) {
        SCOPED_TRACE(hasInstaller ? "under an installer's window" : "alone");
        const auto installer = hasInstaller ? std::make_unique<InstallerWindow>() : nullptr;
        const auto run = StartMorvix("");
        const ProgressWindow window(*run);
        window.WaitUntilOffered(IDCANCEL);

        EXPECT_EQ(GetWindow(window.Window(), GW_OWNER), hasInstaller ? installer->Window() : nullptr);
        window.Press(IDCANCEL);
        EXPECT_EQ(run->Finish().exitCode, 0);
    }
}

TEST_F(DialogStates, TheFinishButtonOfTheOemVariantNeedNotWaitForItsTimer)
{
    const auto run = StartMorvix("/md");
    const ProgressWindow window(*run);
    window.WaitUntilOffered(ProgressWindow::kFinish);
    window.Press(ProgressWindow::kFinish);

    EXPECT_EQ(run->Finish().exitCode, 0);
    EXPECT_THAT(Installs(), ElementsAre(InstallLine("Inf\\one.inf", kDevice)));
}

TEST_F(DialogStates, TheTimerOfTheOemVariantEndsTheRun)
{
    const auto run = StartMorvix("/md");
    const ProgressWindow window(*run);
    window.WaitUntilOffered(ProgressWindow::kFinish);
    const DWORD start = GetTickCount();
    PostMessageA(window.Window(), WM_TIMER, kCloseTimer, 0);

    EXPECT_EQ(run->Finish().exitCode, 0);
    EXPECT_LT(GetTickCount() - start, 4500u);
}

struct TimerRow
{
    const char* name;
    WPARAM timer;
    size_t restarts;
};

// A run that waits until it is ended: its system has no flow, so nothing is posted to the dialog.
class WaitingRun : public DialogStates, public testing::WithParamInterface<TimerRow>
{
protected:
    WaitingRun() { Folder().Answer("NetInst", "Family", "Windows NT"); }

    const RestartWatch m_restarts;
};

TEST_P(WaitingRun, EndsWithATimerAndRestartsOnlyByTheCloseTimer)
{
    const auto run = StartMorvix("/s /r");
    const ProgressWindow window(*run);
    run->WaitForTrace("Exit -> InstallDrivers()");
    PostMessageA(window.Window(), WM_TIMER, GetParam().timer, 0);
    const FinishedRun finished = run->Finish();

    EXPECT_EQ(finished.exitCode, 0);
    EXPECT_EQ(finished.Count("Entering - RestartMachine"), GetParam().restarts);
    EXPECT_TRUE(GetParam().restarts == 0 || m_restarts.WaitForRefusal());
    EXPECT_EQ(m_restarts.Refused(), GetParam().restarts);
}

INSTANTIATE_TEST_SUITE_P(Each, WaitingRun,
                         testing::Values(TimerRow{"OfTheOemVariant", kCloseTimer, 1},
                                         TimerRow{"ThatIsUnknown", kNobodysTimer, 0}),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_F(DialogStates, SlashRRestartsOnceWithoutAQuestionWhateverWasFound)
{
    const RestartWatch restarts;

    const FinishedRun run = RunMorvix("/s /r");

    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.Count("Entering - RestartMachine"), 1u);
    EXPECT_TRUE(restarts.WaitForRefusal());
    EXPECT_EQ(restarts.Refused(), 1u);
}

// A family of systems whose key of PCI devices this machine does not have.
class FailedPass : public DialogStates
{
protected:
    FailedPass()
    {
        Folder().Answer("NetInst", "Family", "Windows Millenium");
        Folder().UseDouble("srclient.dll");
        Folder().Answer("srclient", "Sequence", "12");
    }

    void ExpectOpenRestorePoint()
    {
        EXPECT_EQ(Folder().JournalLines("SRSetRestorePointW").size(), 1u);
        EXPECT_EQ(Folder().JournalLines("SRSetRestorePointW event=102").size(), 1u);
    }

    const ScratchRegistryKey m_noDevices{"Enum"};
    const NativeLibrary m_native{"srclient"};
};

TEST_F(FailedPass, IsShownToTheUserWhoFinishesTheRun)
{
    const auto run = StartMorvix("");
    const ProgressWindow window(*run);
    window.WaitUntilOffered(IDOK);
    window.Press(IDOK);
    window.WaitUntilOffered(ProgressWindow::kFinish);
    window.WaitUntilFocused(ProgressWindow::kFinish);
    window.WaitUntilGone(kActivityBar);
    EXPECT_EQ(window.TextOf(ProgressWindow::kStatus), ResourceText(3));
    EXPECT_FALSE(window.Offers(ProgressWindow::kRestartNow));
    window.Press(ProgressWindow::kFinish);
    const FinishedRun finished = run->Finish();

    EXPECT_EQ(finished.exitCode, 0);
    EXPECT_EQ(finished.Count("Exit -> EnumerateRegistryForPCIDevices()\n"), 1u);
    EXPECT_FALSE(finished.Traced("Exit -> InstallDrivers()\n"));
    ExpectOpenRestorePoint();
}

TEST_F(FailedPass, PostsNothingInASilentRunAndAnInstallerStepSoTheProcessStays)
{
    for (const char* options : {"/s", "/m", "/s /m", "/md"}) {
        SCOPED_TRACE(options);
        const auto run = StartMorvix(options);
        const ProgressWindow window(*run);
        run->WaitForTrace("Exit -> EnumerateRegistryForPCIDevices()");

        EXPECT_TRUE(StaysForASecond(*run));
        EXPECT_EQ(window.TextOf(ProgressWindow::kStatus), ResourceText(21));
        EXPECT_FALSE(window.Offers(ProgressWindow::kFinish));
        EXPECT_FALSE(run->SoFar().Traced("Exit -> InstallDrivers()\n"));
    }
}

// The Windows 98 family always restarts.
class Countdown : public DialogStates
{
protected:
    static constexpr int kSeconds = 20;

    Countdown()
    {
        Folder().Answer("NetInst", "Family", "Windows 98");
        CreateRegistryKey(m_devices.Path() + "\\PCI");
    }

    static std::string TextAt(int seconds)
    {
        std::string text = ResourceText(23);
        constexpr std::string_view kInsert = "%1!u!";
        return text.replace(text.find(kInsert), kInsert.size(), std::to_string(seconds));
    }

    static void RunUntilRestartIsOffered(const ProgressWindow& window)
    {
        window.WaitUntilOffered(IDOK);
        window.Press(IDOK);
        window.WaitUntilOffered(ProgressWindow::kRestartLater);
    }

    // Offers the restart again, which resets the countdown, and sends the first twenty ticks before the clock sends
    // one. Repeated on a machine that is too slow for that.
    static std::vector<std::string> TwentyTicksAtOnce(const ProgressWindow& window)
    {
        constexpr DWORD kBeforeTheClock = 900;
        const UINT offer = RegisterWindowMessageA("Norda Morvix Restart Now");
        std::vector<std::string> texts;
        DWORD start = 0;
        do {
            texts.clear();
            start = GetTickCount();
            Send(window, offer);
            for (int tick = 0; tick < kSeconds; ++tick) {
                Send(window, WM_TIMER, kCountdownTimer);
                texts.push_back(window.TextOf(ProgressWindow::kStatus));
            }
        } while (GetTickCount() - start > kBeforeTheClock);
        return texts;
    }

    const ScratchRegistryKey m_devices{"Enum"};
    const RestartWatch m_restarts;
};

TEST_F(Countdown, Shows20DownTo0AndRestartsOnThe21stTick)
{
    const auto run = StartMorvix("");
    const ProgressWindow window(*run);
    RunUntilRestartIsOffered(window);

    std::vector<std::string> expected;
    for (int seconds = kSeconds; seconds >= 1; --seconds) {
        expected.push_back(TextAt(seconds));
    }
    EXPECT_EQ(TwentyTicksAtOnce(window), expected);
    EXPECT_FALSE(run->SoFar().Traced("Entering - RestartMachine"));
    Send(window, WM_TIMER, kCountdownTimer);
    // At once: not a tick later.
    EXPECT_EQ(run->SoFar().Count("Entering - RestartMachine"), 1u);
    EXPECT_EQ(window.TextOf(ProgressWindow::kStatus), TextAt(0));
    EXPECT_TRUE(m_restarts.WaitForRefusal());
}

TEST_F(Countdown, RestartLaterEndsItWithoutARestart)
{
    const auto run = StartMorvix("");
    const ProgressWindow window(*run);
    RunUntilRestartIsOffered(window);
    TwentyTicksAtOnce(window);
    window.Press(ProgressWindow::kRestartLater);
    const FinishedRun finished = run->Finish();

    EXPECT_EQ(finished.exitCode, 0);
    EXPECT_FALSE(finished.Traced("Entering - RestartMachine"));
    EXPECT_EQ(m_restarts.Refused(), 0u);
}

TEST_F(Countdown, RestartNowNeedNotWaitForItsEnd)
{
    const auto run = StartMorvix("");
    const ProgressWindow window(*run);
    RunUntilRestartIsOffered(window);
    window.Press(ProgressWindow::kRestartNow);
    run->WaitForTrace("Entering - RestartMachine");

    EXPECT_TRUE(m_restarts.WaitForRefusal());
}

TEST_F(Countdown, ReturnRestartsBecauseTheFocusIsOnRestartNow)
{
    const auto run = StartMorvix("");
    const ProgressWindow window(*run);
    RunUntilRestartIsOffered(window);
    window.WaitUntilFocused(ProgressWindow::kRestartNow);
    PressKey(window, VK_RETURN);
    run->WaitForTrace("Entering - RestartMachine");

    EXPECT_TRUE(m_restarts.WaitForRefusal());
}
} // namespace
