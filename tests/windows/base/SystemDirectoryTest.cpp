#include "SystemDirectory.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <array>

TEST(SystemDirectory, IsThePlatformsWithoutATrailingBackslash)
{
    std::array<char, MAX_PATH> platform{};
    ASSERT_NE(GetSystemDirectoryA(platform.data(), MAX_PATH), 0u);
    EXPECT_EQ(SystemDirectory(), platform.data());
    EXPECT_FALSE(SystemDirectory().ends_with('\\'));
}
