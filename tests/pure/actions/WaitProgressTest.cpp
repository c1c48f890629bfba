#include "WaitProgress.h"

#include <gtest/gtest.h>

TEST(WaitProgress, TheTicksOfAWholeWaitAddUp)
{
    for (const std::uint32_t limit : {1U, 7U, 900U, 86400U}) {
        WaitProgress progress(limit);
        std::uint32_t sum = 0;
        for (std::uint32_t second = 1; second <= limit; ++second) {
            sum += progress.TicksAfter(second);
        }
        EXPECT_EQ(sum, kWaitTicks) << limit;
    }
}

TEST(WaitProgress, HalfTheTimeIsHalfTheTicks)
{
    WaitProgress progress(900);
    EXPECT_EQ(progress.TicksAfter(450), kWaitTicks / 2);
    EXPECT_EQ(progress.TicksAfter(450), 0U);
}

TEST(WaitProgress, AProgramThatEndsEarlyFillsTheRest)
{
    WaitProgress progress(900);
    const std::uint32_t first = progress.TicksAfter(30);
    EXPECT_EQ(progress.Rest(), kWaitTicks - first);
    EXPECT_EQ(progress.Rest(), 0U);
}

TEST(WaitProgress, TimeBeyondTheLimitAddsNothing)
{
    WaitProgress progress(10);
    EXPECT_EQ(progress.TicksAfter(10), kWaitTicks);
    EXPECT_EQ(progress.TicksAfter(11), 0U);
    EXPECT_EQ(progress.TicksAfter(0), 0U);
}

TEST(WaitProgress, TheTextGivesTheTimeAndTheLimit)
{
    EXPECT_EQ(WaitProgress(900).Text(30), "30 of at most 900 seconds");
}
