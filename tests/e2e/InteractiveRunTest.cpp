// Runs with a dialog: what it shows, which buttons it offers and how it ends.

#include <gmock/gmock.h>

#include <memory>

#include "Adapter.h"
#include "Environment.h"
#include "OwnInfs.h"
#include "ProgramWindows.h"
#include "RegistryKeys.h"

namespace {
using testing::ElementsAre;
using testing::IsEmpty;

constexpr char kDevice[] = "VEN_5D1A&DEV_7A01&SUBSYS_00115D1A&REV_03";

class InteractiveRun : public DoubleRun
{
protected:
    InteractiveRun() { WriteInf("one.inf", InfFor(kDevice)); }

    // Presses OK, waits for the finish button, and returns the text that the dialog ends with.
    static std::string RunToTheEnd(const ProgressWindow& window)
    {
        window.Press(IDOK);
        window.WaitUntilOffered(ProgressWindow::kFinish);
        return window.TextOf(ProgressWindow::kStatus);
    }
};

TEST_F(InteractiveRun, WelcomesAndWaitsForTheUser)
{
    const Adapter adapter(kDevice);
    const auto run = StartMorvix("");
    const ProgressWindow window(*run);
    window.WaitUntilOffered(IDOK);

    EXPECT_TRUE(window.Visible());
    EXPECT_EQ(window.Title(), ResourceText(1008));
    EXPECT_EQ(window.TextOf(ProgressWindow::kStatus), ResourceText(1));
    EXPECT_EQ(window.TextOf(IDCANCEL), ResourceText(15));
    EXPECT_TRUE(window.Offers(IDCANCEL));
    EXPECT_FALSE(window.Offers(ProgressWindow::kFinish));
    EXPECT_FALSE(window.Offers(ProgressWindow::kRestartNow));
    EXPECT_FALSE(window.Offers(ProgressWindow::kRestartLater));
    EXPECT_FALSE(run->SoFar().Traced("Entering - InstallThread"));
}

TEST_F(InteractiveRun, CancelBeforeOkEndsItWithoutAnInstallation)
{
    const Adapter adapter(kDevice);
    const auto run = StartMorvix("");
    const ProgressWindow window(*run);
    window.WaitUntilOffered(IDCANCEL);
    window.Press(IDCANCEL);
    const FinishedRun finished = run->Finish();

    EXPECT_EQ(finished.exitCode, 0);
    EXPECT_FALSE(finished.Traced("Entering - InstallThread"));
    EXPECT_THAT(Installs(), IsEmpty());
}

TEST_F(InteractiveRun, OkInstallsAndTheFinishButtonEndsIt)
{
    const Adapter adapter(kDevice);
    const auto run = StartMorvix("");
    const ProgressWindow window(*run);
    window.WaitUntilOffered(IDOK);

    EXPECT_EQ(RunToTheEnd(window), ResourceText(9));
    EXPECT_FALSE(window.Offers(IDOK));
    EXPECT_FALSE(window.Offers(IDCANCEL));
    window.Press(ProgressWindow::kFinish);
    const FinishedRun finished = run->Finish();

    EXPECT_EQ(finished.exitCode, 0);
    EXPECT_EQ(finished.Count("Entering - InstallThread"), 1u);
    EXPECT_EQ(finished.Count("ScanForHardwareChanges()\n"), 2u);
    EXPECT_THAT(Installs(), ElementsAre(InstallLine("Inf\\one.inf", kDevice)));
    EXPECT_FALSE(finished.Traced("Entering - RestartMachine"));
}

struct EndingRow
{
    const char* name;
    bool hasAdapter;
    const char* key; ///< what the installer library answers; null for a success
    const char* value;
    unsigned text; ///< what the dialog ends with
};

class Ending : public InteractiveRun, public testing::WithParamInterface<EndingRow>
{
};

TEST_P(Ending, IsShownAtTheFinishButton)
{
    const EndingRow& row = GetParam();
    const auto adapter = row.hasAdapter ? std::make_unique<Adapter>(kDevice) : nullptr;
    if (row.key != nullptr) {
        Folder().Answer("NetInst", row.key, row.value);
    }
    const auto run = StartMorvix("");
    const ProgressWindow window(*run);
    window.WaitUntilOffered(IDOK);

    EXPECT_EQ(RunToTheEnd(window), ResourceText(row.text));
    window.Press(ProgressWindow::kFinish);
    EXPECT_EQ(run->Finish().exitCode, 0);
}

INSTANTIATE_TEST_SUITE_P(EachOutcome, Ending,
                         testing::Values(EndingRow{"NoAdapter", false, nullptr, nullptr, 5},
                                         EndingRow{"RefusedDriver", true, "InstallStatus1", "0xE0000207", 24},
                                         EndingRow{"NoDriverInstallInterface", true, "DriverInstallFactoryStatus",
                                                   "0x80004005", 24}),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_F(InteractiveRun, IgnoresTheRestartOptions)
{
    const auto run = StartMorvix("/r");
    const ProgressWindow window(*run);
    window.WaitUntilOffered(IDCANCEL);
    window.Press(IDCANCEL);
    const FinishedRun finished = run->Finish();

    EXPECT_EQ(finished.exitCode, 0);
    EXPECT_FALSE(finished.Traced("command line: '/r', force a reboot\n"));
    EXPECT_FALSE(finished.Traced("Entering - RestartMachine"));
}

TEST_F(InteractiveRun, AsAnInstallerStepInstallsAtOnceAndEndsByItself)
{
    const Adapter adapter(kDevice);

    const FinishedRun run = RunMorvix("/m");

    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.Count("command line: '/m', install MSI\n"), 1u);
    EXPECT_THAT(Installs(), ElementsAre(InstallLine("Inf\\one.inf", kDevice)));
}

TEST_F(InteractiveRun, AsASilentInstallerStepDoesTheSame)
{
    const Adapter adapter(kDevice);

    const FinishedRun run = RunMorvix("/s /m");

    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.Count("command line: '/s /m', install MSI\n"), 1u);
    EXPECT_THAT(Installs(), ElementsAre(InstallLine("Inf\\one.inf", kDevice)));
    EXPECT_FALSE(ReadRegistryValue(kResultsKey, "RebootNeeded"));
}

TEST_F(InteractiveRun, InTheOemVariantInstallsAtOnceShowsTheResultAndClosesAfterFiveSeconds)
{
    const Adapter adapter(kDevice);
    const DWORD start = GetTickCount();
    const auto run = StartMorvix("/md");
    const ProgressWindow window(*run);
    window.WaitForStatus(ResourceText(9));
    window.WaitUntilOffered(ProgressWindow::kFinish);
    EXPECT_FALSE(window.Offers(IDOK));
    EXPECT_FALSE(window.Offers(IDCANCEL));

    EXPECT_EQ(run->Finish().exitCode, 0);
    EXPECT_GE(GetTickCount() - start, 5000u);
    EXPECT_THAT(Installs(), ElementsAre(InstallLine("Inf\\one.inf", kDevice)));
}

TEST_F(InteractiveRun, OnAnUnknownFamilyPostsNothingAndStaysUntilItIsClosed)
{
    Folder().Answer("NetInst", "Family", "Windows NT");
    const auto run = StartMorvix("/s /nr");
    run->WaitForTrace("Exit -> InstallDrivers()");
    const ProgressWindow window(*run);

    EXPECT_FALSE(window.Visible());
    EXPECT_TRUE(run->StillRuns());
    PostMessageA(window.Window(), WM_CLOSE, 0, 0);
    const FinishedRun finished = run->Finish();

    EXPECT_EQ(finished.exitCode, 0);
    EXPECT_EQ(finished.Count("unable to determine OS\n"), 1u);
    EXPECT_FALSE(finished.Traced("ScanForHardwareChanges()\n"));
}

TEST_F(InteractiveRun, OnWindowsNTAddsTheAdviceToTheWelcome)
{
    Folder().Answer("NetInst", "Family", "Windows NT");
    const auto run = StartMorvix("");
    const ProgressWindow window(*run);
    window.WaitUntilOffered(IDOK);

    EXPECT_EQ(window.TextOf(ProgressWindow::kStatus), ResourceText(1) + ResourceText(20));
}
} // namespace
