#include "WindowStation.h"

#include <gtest/gtest.h>

TEST(WindowStation, WindowsAreSeenOnAVisibleStationOnly)
{
    EXPECT_TRUE(WindowsAreSeenIn(true, 1, 6));
    EXPECT_FALSE(WindowsAreSeenIn(false, 1, 6));
    EXPECT_FALSE(WindowsAreSeenIn(false, 0, 5));
}

TEST(WindowStation, WindowsOfSession0AreNotSeenSinceWindowsVista)
{
    EXPECT_TRUE(WindowsAreSeenIn(true, 0, 5)) << "before Windows Vista it was the console's session";
    EXPECT_FALSE(WindowsAreSeenIn(true, 0, 6));
    EXPECT_FALSE(WindowsAreSeenIn(true, 0, 10));
    EXPECT_TRUE(WindowsAreSeenIn(true, 2, 10));
}
