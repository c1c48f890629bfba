#include "Differences.h"

#include <gtest/gtest.h>

TEST(Differences, AreTheLinesThatOneListAloneHas)
{
    EXPECT_EQ(Differences("key\nold value\nsame\n", "same\r\nnew key\nkey\n"), "+ new key\n- old value\n");
}

TEST(Differences, AChangedValueIsOneLineLessAndOneMore)
{
    EXPECT_EQ(Differences("a : x = 1\nb : x = 1\n", "a : x = 2\nb : x = 1\n"), "- a : x = 1\n+ a : x = 2\n");
}

TEST(Differences, ALineThatIsThereTwiceCountsTwice)
{
    EXPECT_EQ(Differences("a\na\n", "a\n"), "- a\n");
    EXPECT_EQ(Differences("b\na\n", "a\nb\n"), "");
}
