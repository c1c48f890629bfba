// The shipped program on a machine without an adapter: started from every kind of place, by every kind of user.

#include <gmock/gmock.h>

#include "Bundle.h"
#include "ChildTask.h"
#include "Machine.h"
#include "MountedDisc.h"
#include "NetworkShare.h"
#include "OpenFolder.h"
#include "OtherAccounts.h"
#include "RunFolder.h"
#include "RunOfAnEmptyMachine.h"
#include "ScratchDirectory.h"
#include "ShownTexts.h"

namespace {
constexpr char kSilently[] = "/s /nr";
// ERROR_ELEVATION_REQUIRED of Windows Vista and later.
constexpr DWORD kElevationRequired = 740;

class RunsWithoutAdapter : public EmptyMachine
{
};
} // namespace

TEST_F(RunsWithoutAdapter, SilentlyEndsWithExitCode0TracesAsEverywhereAndRecordsNothing)
{
    const RunFolder folder;
    ExpectSilentRun(RunSilentlyIn(folder.Path()), folder.Path());
}

TEST_F(RunsWithoutAdapter, InteractivelyShowsItsTextsAndClosesItsWindow)
{
    if (const auto why = WhyNoWindows()) {
        GTEST_SKIP() << NotHere(*why);
    }
    ExpectDialog("interactive");
}

TEST_F(RunsWithoutAdapter, FromAShareIsTheSameRun)
{
    if (const auto why = NetworkShare::WhyNot()) {
        GTEST_SKIP() << NotHere(*why);
    }
    const OpenFolder folder;
    const NetworkShare share(folder.Path());
    ExpectSilentRun(RunSilentlyIn(share.Path() + "\\kit"), share.Path() + "\\kit");
}

TEST_F(RunsWithoutAdapter, FromAMappedDriveIsTheSameRun)
{
    if (const auto why = NetworkShare::WhyNot()) {
        GTEST_SKIP() << NotHere(*why);
    }
    const OpenFolder folder;
    const NetworkShare share(folder.Path());
    const MappedDrive drive(share.Path());
    ExpectSilentRun(RunSilentlyIn(drive.Path() + "\\kit"), drive.Path() + "\\kit");
}

TEST_F(RunsWithoutAdapter, FromADiscIsTheSameRun)
{
    if (const auto why = MountedDisc::WhyNot()) {
        GTEST_SKIP() << NotHere(*why);
    }
    const OpenFolder folder;
    WriteFileBytes(folder.At("disc.iso"), DiscOf(folder.Kit()));
    const MountedDisc disc(folder.At("disc.iso"));
    ExpectSilentRun(RunSilentlyIn(disc.Drive() + "\\kit"), disc.Drive() + "\\kit");
}

TEST_F(RunsWithoutAdapter, InARemoteSessionShowsItsTexts)
{
    if (!IsRemoteSession()) {
        GTEST_SKIP() << NotHere("this is not a remote session: run it over remote desktop");
    }
    ExpectDialog("remote");
}

TEST_F(RunsWithoutAdapter, AsATaskOfTheSystemAccountIsTheSameRun)
{
    if (const auto why = WhyNoTaskAsSystem()) {
        GTEST_SKIP() << NotHere(*why);
    }
    const OpenFolder folder;
    ExpectSilentRun(DoAsSystem(folder, {"start", folder.Kit() + "\\Morvix.exe", kSilently}), folder.Kit());
}

TEST_F(RunsWithoutAdapter, AsAStandardUserIsRefused)
{
    if (const auto why = WhyNoOtherUser()) {
        GTEST_SKIP() << NotHere(*why);
    }
    const OpenFolder folder;
    const TemporaryUser user;
    const std::string program = folder.Kit() + "\\Morvix.exe";
    if (AsksForConsent()) {
        const ChildReport wanted = user.Do(folder, {"start", program, kSilently});
        EXPECT_EQ(wanted.At("error"), std::to_string(kElevationRequired)) << "exit " << wanted.At("exit");
    }
    // Without asking for rights, the program itself refuses.
    const ChildReport started = user.Do(folder, {"run", program, kSilently});
    EXPECT_EQ(started.At("exit"), "-1") << "error " << started.At("error");
    ASSERT_FALSE(started.lines.empty());
    EXPECT_EQ(started.lines.back(), "Morvix: " + ShownText(8));
    EXPECT_THAT(started.lines, testing::Contains("Morvix: Entering - RunningAsAdministrator"));
    EXPECT_THAT(started.lines, testing::Not(testing::Contains("Morvix: Entering - InstallThread")));
}

TEST_F(RunsWithoutAdapter, WithUtf8AsTheCodePageShowsItsTexts)
{
    if (GetACP() != CP_UTF8) {
        GTEST_SKIP() << NotHere("the code page is " + std::to_string(GetACP()) +
                                ": choose UTF-8 in the region's settings, and restart");
    }
    ExpectDialog("utf-8");
}

TEST_F(RunsWithoutAdapter, AtDoubleScalingShowsItsTextsWithinTheScreen)
{
    if (ScreenDpi() != 192) {
        GTEST_SKIP() << NotHere("the scaling is " + std::to_string(ScreenDpi() * 100 / 96) +
                                " %: choose 200 % in the display's settings, and log on again");
    }
    ExpectDialog("double");
}
