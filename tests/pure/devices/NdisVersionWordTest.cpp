#include "NdisVersionWord.h"

#include <gtest/gtest.h>

TEST(NdisVersionWord, FiveTwoAndLaterCount)
{
    EXPECT_TRUE(IsNdisVersion52OrLater(0x00050002));
    EXPECT_TRUE(IsNdisVersion52OrLater(0x0005FFFF));
    EXPECT_TRUE(IsNdisVersion52OrLater(0x00060000));
    EXPECT_TRUE(IsNdisVersion52OrLater(0xFFFF0000));
}

TEST(NdisVersionWord, EarlierAndUnknownVersionsDoNot)
{
    EXPECT_FALSE(IsNdisVersion52OrLater(0));
    EXPECT_FALSE(IsNdisVersion52OrLater(0x00050001));
    EXPECT_FALSE(IsNdisVersion52OrLater(0x00050000));
    EXPECT_FALSE(IsNdisVersion52OrLater(0x0004FFFF));
    EXPECT_FALSE(IsNdisVersion52OrLater(0x0000FFFF));
}
