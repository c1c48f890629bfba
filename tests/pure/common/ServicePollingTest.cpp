#include "ServicePolling.h"

#include <gtest/gtest.h>

namespace {
constexpr unsigned long kStopped = 1;
constexpr unsigned long kStartPending = 2;
constexpr unsigned long kStopPending = 3;
constexpr unsigned long kRunning = 4;
constexpr unsigned long kContinuePending = 5;
constexpr unsigned long kPaused = 7;
constexpr unsigned long kUnreadable = 0;

struct PollRow
{
    int pending; ///< how many attempts find the service pending
    ServicePoll then;
    bool reached;
    int attempts;
    int waits;
};

constexpr PollRow kPolls[] = {
    {0, ServicePoll::Reached, true, 1, 0},
    {3, ServicePoll::Reached, true, 4, 3},
    {50, ServicePoll::Reached, true, 51, 50},
    // The 51st attempt is the last.
    {51, ServicePoll::Reached, false, 51, 50},
    // A service that has failed is not waited for.
    {0, ServicePoll::Failed, false, 1, 0},
    {2, ServicePoll::Failed, false, 3, 2},
};

struct StateRow
{
    unsigned long state;
    ServicePoll starting;
    ServicePoll stopping;
};

constexpr StateRow kStates[] = {
    {kRunning, ServicePoll::Reached, ServicePoll::Pending},
    {kStartPending, ServicePoll::Pending, ServicePoll::Pending},
    {kContinuePending, ServicePoll::Pending, ServicePoll::Pending},
    {kPaused, ServicePoll::Pending, ServicePoll::Pending},
    {kStopped, ServicePoll::Failed, ServicePoll::Reached},
    {kStopPending, ServicePoll::Failed, ServicePoll::Pending},
    {kUnreadable, ServicePoll::Failed, ServicePoll::Failed},
};
} // namespace

TEST(ServicePolling, EndsAtTheWantedStateAtAFailureOrAfter51AttemptsAndWaitsBetweenThem)
{
    for (const PollRow& row : kPolls) {
        int attempts = 0;
        int waits = 0;
        const bool reached =
            PollService([&] { return ++attempts > row.pending ? row.then : ServicePoll::Pending; }, [&] { ++waits; });
        EXPECT_EQ(reached, row.reached) << row.pending;
        EXPECT_EQ(attempts, row.attempts) << row.pending;
        EXPECT_EQ(waits, row.waits) << row.pending;
    }
}

TEST(ServicePolling, TheWholeWaitIsTenSeconds)
{
    EXPECT_EQ(static_cast<unsigned long>(kServicePolls - 1) * kServicePollMilliseconds, 10000u);
}

TEST(ServicePolling, EachStateIsReachedPendingOrFailedForAStartAndForAStop)
{
    for (const StateRow& row : kStates) {
        EXPECT_EQ(LookAtStart(row.state), row.starting) << row.state;
        EXPECT_EQ(LookAtStop(row.state), row.stopping) << row.state;
    }
}
