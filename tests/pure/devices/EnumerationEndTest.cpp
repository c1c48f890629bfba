#include "EnumerationEnd.h"

#include <gtest/gtest.h>

namespace {
constexpr int32_t kSuccess = 0;
constexpr int32_t kMoreData = 234;
constexpr int32_t kNoMoreItems = 259;
constexpr int32_t kKeyDeleted = 1018;
} // namespace

TEST(EnumerationEnd, NoMoreItemsEndsTheWalkAtOnce)
{
    EnumerationEnd end;
    EXPECT_FALSE(end.ReachedWith(kSuccess));
    EXPECT_TRUE(end.ReachedWith(kNoMoreItems));
}

TEST(EnumerationEnd, OtherErrorsOnlyCostTheirIndex)
{
    EnumerationEnd end;
    EXPECT_FALSE(end.ReachedWith(kMoreData));
    EXPECT_FALSE(end.ReachedWith(kKeyDeleted));
    EXPECT_FALSE(end.ReachedWith(kSuccess));
    EXPECT_TRUE(end.ReachedWith(kNoMoreItems));
}

TEST(EnumerationEnd, AKeyThatOnlyAnswersWithErrorsEndsTheWalk)
{
    EnumerationEnd end;
    for (uint32_t count = 0; count < EnumerationEnd::kMaxErrorsInARow; ++count) {
        ASSERT_FALSE(end.ReachedWith(kKeyDeleted)) << count;
    }
    EXPECT_TRUE(end.ReachedWith(kKeyDeleted));
}

TEST(EnumerationEnd, ANameStartsTheCountAnew)
{
    EnumerationEnd end;
    for (uint32_t count = 0; count < EnumerationEnd::kMaxErrorsInARow; ++count) {
        ASSERT_FALSE(end.ReachedWith(kMoreData)) << count;
    }
    EXPECT_FALSE(end.ReachedWith(kSuccess));
    for (uint32_t count = 0; count < EnumerationEnd::kMaxErrorsInARow; ++count) {
        ASSERT_FALSE(end.ReachedWith(kMoreData)) << count;
    }
    EXPECT_TRUE(end.ReachedWith(kMoreData));
}
