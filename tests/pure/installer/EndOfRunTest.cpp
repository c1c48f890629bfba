#include "EndOfRun.h"

#include <gtest/gtest.h>

#include <set>

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

namespace {
struct EndRow
{
    unsigned silent;
    unsigned force;
    unsigned suppress;
    unsigned msi;
    bool needed; ///< one of the three reasons holds
    RestartAction action;
};

constexpr bool kNeeded = true;
constexpr bool kNotNeeded = false;

// Every combination, also those that no command line leads to.
constexpr EndRow kEnds[] = {
    // An interactive run asks.
    {0, 0, 0, 0, kNotNeeded, RestartAction::None},
    {0, 0, 0, 0, kNeeded, RestartAction::Ask},
    // A visible installer step leaves it to the package.
    {0, 0, 0, 1, kNotNeeded, RestartAction::None},
    {0, 0, 0, 1, kNeeded, RestartAction::RecordForInstaller},
    {0, 0, 1, 0, kNotNeeded, RestartAction::None},
    {0, 0, 1, 0, kNeeded, RestartAction::None},
    {0, 0, 1, 1, kNotNeeded, RestartAction::None},
    {0, 0, 1, 1, kNeeded, RestartAction::None},
    {0, 1, 0, 0, kNotNeeded, RestartAction::Restart},
    {0, 1, 0, 0, kNeeded, RestartAction::Restart},
    {0, 1, 0, 1, kNotNeeded, RestartAction::Restart},
    {0, 1, 0, 1, kNeeded, RestartAction::Restart},
    {0, 1, 1, 0, kNotNeeded, RestartAction::Restart},
    {0, 1, 1, 0, kNeeded, RestartAction::Restart},
    {0, 1, 1, 1, kNotNeeded, RestartAction::Restart},
    {0, 1, 1, 1, kNeeded, RestartAction::Restart},
    // A silent run restarts.
    {1, 0, 0, 0, kNotNeeded, RestartAction::None},
    {1, 0, 0, 0, kNeeded, RestartAction::Restart},
    // A silent installer step leaves it to the package too.
    {1, 0, 0, 1, kNotNeeded, RestartAction::None},
    {1, 0, 0, 1, kNeeded, RestartAction::RecordForInstaller},
    {1, 0, 1, 0, kNotNeeded, RestartAction::None},
    {1, 0, 1, 0, kNeeded, RestartAction::None},
    {1, 0, 1, 1, kNotNeeded, RestartAction::None},
    {1, 0, 1, 1, kNeeded, RestartAction::None},
    {1, 1, 0, 0, kNotNeeded, RestartAction::Restart},
    {1, 1, 0, 0, kNeeded, RestartAction::Restart},
    {1, 1, 0, 1, kNotNeeded, RestartAction::Restart},
    {1, 1, 0, 1, kNeeded, RestartAction::Restart},
    {1, 1, 1, 0, kNotNeeded, RestartAction::Restart},
    {1, 1, 1, 0, kNeeded, RestartAction::Restart},
    {1, 1, 1, 1, kNotNeeded, RestartAction::Restart},
    {1, 1, 1, 1, kNeeded, RestartAction::Restart},
};
} // namespace

TEST(EndOfRun, EveryCombinationOfFlagsAndNeedHasItsAction)
{
    std::set<unsigned> seen;
    for (const EndRow& row : kEnds) {
        SCOPED_TRACE(testing::Message() << row.silent << row.force << row.suppress << row.msi << row.needed);
        seen.insert(row.silent << 4U | row.force << 3U | row.suppress << 2U | row.msi << 1U | (row.needed ? 1U : 0U));
        RunOptionsRecord options = Options(row.silent, row.force, row.suppress, row.msi);
        // Neither the dialog's variant nor the scan of all INF files has a say.
        for (const unsigned others : {0U, 1U, 2U, 3U}) {
            options.oemGui = others & 1U;
            options.forceInfScan = others >> 1U;
            EXPECT_EQ(row.action, DecideRestart(options, row.needed));
            EXPECT_EQ(row.force == 0 && row.suppress == 0, OutcomeDecidesRestart(options));
        }
    }
    EXPECT_EQ(32U, seen.size());
}

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
