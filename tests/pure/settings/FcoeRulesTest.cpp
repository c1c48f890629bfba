#include "FcoeRules.h"

#include <gtest/gtest.h>

TEST(FcoeLun, RangeIs0To4095)
{
    EXPECT_TRUE(IsFcoeLunInRange("0"));
    EXPECT_TRUE(IsFcoeLunInRange("4095"));
    EXPECT_FALSE(IsFcoeLunInRange("4096"));
    EXPECT_FALSE(IsFcoeLunInRange("2147483647"));
}

TEST(FcoeLun, NegativeNumberIsAVeryLargeOne)
{
    EXPECT_FALSE(IsFcoeLunInRange("-1"));
    EXPECT_FALSE(IsFcoeLunInRange("-4096"));
    EXPECT_FALSE(IsFcoeLunInRange("-2147483648"));
}

TEST(FcoeLun, NumberThatFitsNoIntegerIsOutOfRange)
{
    EXPECT_FALSE(IsFcoeLunInRange("4294967296"));
    EXPECT_FALSE(IsFcoeLunInRange("18446744073709551616"));
    EXPECT_FALSE(IsFcoeLunInRange("-18446744073709551616"));
}

TEST(FcoeLun, TextIsReadAsTheRuntimeReadsIt)
{
    EXPECT_TRUE(IsFcoeLunInRange("")) << "no number is 0";
    EXPECT_TRUE(IsFcoeLunInRange("none"));
    EXPECT_TRUE(IsFcoeLunInRange("  12"));
    EXPECT_TRUE(IsFcoeLunInRange("12 34567"));
    EXPECT_TRUE(IsFcoeLunInRange("-0"));
    EXPECT_TRUE(IsFcoeLunInRange("0x2000")) << "only the 0 in front is decimal";
    EXPECT_FALSE(IsFcoeLunInRange("9999x"));
}
