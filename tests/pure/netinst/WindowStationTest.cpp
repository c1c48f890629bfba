#include "WindowStation.h"

#include <gtest/gtest.h>

TEST(WindowStation, OnlyAVisibleStationShowsWindows)
{
    EXPECT_TRUE(WindowsAreSeenIn(true, 1, 6));
    EXPECT_FALSE(WindowsAreSeenIn(false, 1, 6));
    EXPECT_FALSE(WindowsAreSeenIn(false, 0, 5));
}

TEST(WindowStation, NobodyIsLoggedOnToSession0SinceWindowsVista)
{
    EXPECT_TRUE(WindowsAreSeenIn(true, 0, 5)) << "the console's session before";
    EXPECT_FALSE(WindowsAreSeenIn(true, 0, 6));
    EXPECT_FALSE(WindowsAreSeenIn(true, 0, 10));
    EXPECT_TRUE(WindowsAreSeenIn(true, 2, 10));
}
