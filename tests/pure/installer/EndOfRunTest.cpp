#include "EndOfRun.h"

#include <gtest/gtest.h>

#include "StringIds.h"

namespace {
RunOptionsRecord Options(unsigned silent, unsigned force, unsigned suppress, unsigned msi)
{
    RunOptionsRecord options;
    options.silent = silent;
    options.forceReboot = force;
    options.suppressReboot = suppress;
    options.msiMode = msi;
    return options;
}
} // namespace

TEST(EndOfRun, ForcedRestartRestartsWhateverWasFound)
{
    for (const unsigned msi : {0U, 1U}) {
        EXPECT_EQ(RestartAction::Restart, DecideRestart(Options(1, 1, 0, msi), false));
        EXPECT_EQ(RestartAction::Restart, DecideRestart(Options(1, 1, 1, msi), true));
        EXPECT_FALSE(OutcomeDecidesRestart(Options(1, 1, 0, msi)));
    }
}

TEST(EndOfRun, SuppressedRestartNeverRestartsAndNeverAsks)
{
    for (const bool needed : {false, true}) {
        EXPECT_EQ(RestartAction::None, DecideRestart(Options(1, 0, 1, 0), needed));
        EXPECT_EQ(RestartAction::None, DecideRestart(Options(1, 0, 1, 1), needed));
    }
    EXPECT_FALSE(OutcomeDecidesRestart(Options(1, 0, 1, 0)));
}

TEST(EndOfRun, WithoutAReasonNothingIsDone)
{
    for (const unsigned silent : {0U, 1U}) {
        for (const unsigned msi : {0U, 1U}) {
            EXPECT_TRUE(OutcomeDecidesRestart(Options(silent, 0, 0, msi)));
            EXPECT_EQ(RestartAction::None, DecideRestart(Options(silent, 0, 0, msi), false));
        }
    }
}

TEST(EndOfRun, NeededRestartFollowsSilentAndMsiMode)
{
    EXPECT_EQ(RestartAction::Restart, DecideRestart(Options(1, 0, 0, 0), true));
    EXPECT_EQ(RestartAction::RecordForInstaller, DecideRestart(Options(1, 0, 0, 1), true));
    EXPECT_EQ(RestartAction::Ask, DecideRestart(Options(0, 0, 0, 0), true));
    EXPECT_EQ(RestartAction::RecordForInstaller, DecideRestart(Options(0, 0, 0, 1), true));
}

TEST(EndOfRun, OutcomeTextSaysNoAdapterBeforeFailureBeforeDone)
{
    EXPECT_EQ(kStringNoAdapter, OutcomeString(false, false));
    EXPECT_EQ(kStringNoAdapter, OutcomeString(false, true));
    EXPECT_EQ(kStringSomeFailed, OutcomeString(true, true));
    EXPECT_EQ(kStringDone, OutcomeString(true, false));
}

TEST(EndOfRun, IscsiSettingsAreVerifiedExactlyWhenAllFourConditionsHoldForABootAdapter)
{
    for (unsigned bits = 0; bits < 32; ++bits) {
        const IscsiConditions conditions{.rightSystem = (bits & 1U) != 0,
                                         .patchInstalled = (bits & 2U) != 0,
                                         .initiatorPresent = (bits & 4U) != 0,
                                         .crashDumpEnabled = (bits & 8U) != 0};
        EXPECT_EQ(bits == 31, IscsiSettingsAreVerified((bits & 16U) != 0, conditions)) << bits;
    }
}

TEST(EndOfRun, IscsiBootAdapterNeedsARestartWhenTheFirstThreeConditionsHold)
{
    for (unsigned bits = 0; bits < 32; ++bits) {
        const IscsiConditions conditions{.rightSystem = (bits & 1U) != 0,
                                         .patchInstalled = (bits & 2U) != 0,
                                         .initiatorPresent = (bits & 4U) != 0,
                                         .crashDumpEnabled = (bits & 8U) != 0};
        EXPECT_EQ((bits & 23U) == 23U, IscsiBootNeedsRestart((bits & 16U) != 0, conditions)) << bits;
    }
}
