// The OEM variant of an installer step on a machine that boots over FCoE: the restart needs no button.

#include <gmock/gmock.h>

#include "Environment.h"
#include "ProgramWindows.h"
#include "StorageBoot.h"

namespace {
constexpr UINT kTimerLimit = 10000;
constexpr WPARAM kCountdownTimer = 0;
constexpr int kTicks = 21;

class OemCountdown : public StorageRun
{
protected:
    OemCountdown()
    {
        WriteInf("ngeatest.inf", InfFor(kFirstDevice));
        UseFcoeLibrary("1");
    }

    const InstalledAdapter m_adapter{kFirstDevice, "9001", kFirstInstance};
};

TEST_F(OemCountdown, RestartsByItselfOnTheLastTickAndLeavesNothingToTheInstaller)
{
    const auto run = StartMorvix("/md");
    const ProgressWindow window(*run);
    window.WaitUntilOffered(ProgressWindow::kRestartLater);
    EXPECT_TRUE(window.Offers(ProgressWindow::kRestartNow));
    EXPECT_FALSE(window.Offers(ProgressWindow::kFinish));
    // The clock's own ticks come between these, so the last of them may be the restart's 22nd or later.
    for (int tick = 0; tick < kTicks && !run->SoFar().Traced("Entering - RestartMachine"); ++tick) {
        DWORD_PTR ignored = 0;
        ASSERT_NE(
            SendMessageTimeoutA(window.Window(), WM_TIMER, kCountdownTimer, 0, SMTO_ABORTIFHUNG, kTimerLimit, &ignored),
            0);
    }
    run->WaitForTrace("Entering - RestartMachine");

    EXPECT_TRUE(Watch().WaitForRefusal());
    ExpectNoRebootNeeded();
    EXPECT_TRUE(run->StillRuns()) << "the program ends with the system";
    EXPECT_EQ(Installs().size(), 1u);
}
} // namespace
