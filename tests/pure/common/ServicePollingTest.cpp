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

struct Polling
{
    bool reached;
    int looks;
    int waits;
};

/// Polls a service that is pending for `pendingLooks` looks and then gives `then`.
Polling Poll(int pendingLooks, ServicePoll then)
{
    Polling polling{};
    polling.reached = PollService([&] { return ++polling.looks > pendingLooks ? then : ServicePoll::Pending; },
                                  [&] { ++polling.waits; });
    return polling;
}
} // namespace

TEST(ServicePolling, AServiceInTheWantedStateIsReadOnceWithoutWaiting)
{
    const Polling polling = Poll(0, ServicePoll::Reached);
    EXPECT_TRUE(polling.reached);
    EXPECT_EQ(polling.looks, 1);
    EXPECT_EQ(polling.waits, 0);
}

TEST(ServicePolling, WaitsBetweenAttempts)
{
    const Polling polling = Poll(3, ServicePoll::Reached);
    EXPECT_TRUE(polling.reached);
    EXPECT_EQ(polling.looks, 4);
    EXPECT_EQ(polling.waits, 3);
}

TEST(ServicePolling, TheFiftyFirstAttemptIsTheLast)
{
    EXPECT_TRUE(Poll(50, ServicePoll::Reached).reached);
    const Polling polling = Poll(51, ServicePoll::Reached);
    EXPECT_FALSE(polling.reached);
    EXPECT_EQ(polling.looks, 51);
    EXPECT_EQ(polling.waits, 50);
}

TEST(ServicePolling, AServiceThatCannotGetThereIsNotWaitedFor)
{
    const Polling polling = Poll(2, ServicePoll::Failed);
    EXPECT_FALSE(polling.reached);
    EXPECT_EQ(polling.looks, 3);
    EXPECT_EQ(polling.waits, 2);
}

TEST(ServicePolling, TheWholeWaitIsTenSeconds)
{
    EXPECT_EQ(static_cast<unsigned long>(kServicePolls - 1) * kServicePollMilliseconds, 10000u);
}

TEST(ServicePolling, AStartIsReachedByRunningAndLostByStopping)
{
    EXPECT_EQ(LookAtStart(kRunning), ServicePoll::Reached);
    EXPECT_EQ(LookAtStart(kStartPending), ServicePoll::Pending);
    EXPECT_EQ(LookAtStart(kContinuePending), ServicePoll::Pending);
    EXPECT_EQ(LookAtStart(kPaused), ServicePoll::Pending);
    EXPECT_EQ(LookAtStart(kStopped), ServicePoll::Failed);
    EXPECT_EQ(LookAtStart(kStopPending), ServicePoll::Failed);
    EXPECT_EQ(LookAtStart(kUnreadable), ServicePoll::Failed);
}

TEST(ServicePolling, AStopIsReachedByStoppedAndWaitsThroughEverythingElse)
{
    EXPECT_EQ(LookAtStop(kStopped), ServicePoll::Reached);
    EXPECT_EQ(LookAtStop(kStopPending), ServicePoll::Pending);
    EXPECT_EQ(LookAtStop(kRunning), ServicePoll::Pending);
    EXPECT_EQ(LookAtStop(kStartPending), ServicePoll::Pending);
    EXPECT_EQ(LookAtStop(kUnreadable), ServicePoll::Failed);
}
