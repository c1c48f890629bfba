#include "OrvMultiString.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

using namespace std::string_view_literals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {
// On the heap and of exactly the length, so that the address sanitizer sees a read beyond it.
std::vector<std::string> Read(std::string_view data)
{
    const std::vector<char> exact(data.begin(), data.end());
    return OrvReadMultiString(std::string_view(exact.data(), exact.size()));
}

struct LengthOnly
{
    size_t length;
    [[nodiscard]] size_t Length() const { return length; }
};
} // namespace

TEST(MultiString, TextsAreReadInOrder)
{
    EXPECT_THAT(Read("a\0bc\0\0"sv), ElementsAre("a", "bc"));
}

TEST(MultiString, AnEmptySecondOfThreeTextsIsDropped)
{
    EXPECT_THAT(Read("a\0\0c\0\0"sv), ElementsAre("a", "c"));
}

TEST(MultiString, EmptyDataAndLoneTerminatorsHoldNothing)
{
    EXPECT_THAT(Read(""sv), IsEmpty());
    EXPECT_THAT(Read("\0"sv), IsEmpty());
    EXPECT_THAT(Read("\0\0\0"sv), IsEmpty());
}

TEST(MultiString, ALastTextWithoutTerminatorCounts)
{
    EXPECT_THAT(Read("a\0bc"sv), ElementsAre("a", "bc"));
    EXPECT_THAT(Read("a"sv), ElementsAre("a"));
}

TEST(MultiString, AListWithoutTheFinalTerminatorIsWhole)
{
    EXPECT_THAT(Read("a\0bc\0"sv), ElementsAre("a", "bc"));
}

TEST(MultiString, ASingleTextReadsAsAListOfOne)
{
    EXPECT_THAT(Read("text\0"sv), ElementsAre("text"));
}

TEST(MultiString, AnyBytesGiveNoEmptyTextsAndNoByteTwice)
{
    std::mt19937 random(20240229);
    for (int round = 0; round < 2000; ++round) {
        std::string data(random() % 40, '\0');
        for (char& c : data) {
            c = random() % 3 == 0 ? '\0' : static_cast<char>('a' + random() % 26);
        }
        std::string joined;
        for (const std::string& text : Read(data)) {
            EXPECT_FALSE(text.empty());
            joined += text;
        }
        std::erase(data, '\0');
        EXPECT_EQ(joined, data);
    }
}

TEST(MultiString, StoredSizeIsOneTerminatorForEachTextAndOneAtTheEnd)
{
    EXPECT_EQ(OrvMultiStringBytes(std::vector<LengthOnly>{}), 1U);
    EXPECT_EQ(OrvMultiStringBytes(std::vector<LengthOnly>{{3}}), 5U);
    EXPECT_EQ(OrvMultiStringBytes(std::vector<LengthOnly>{{3}, {0}, {10}}), 17U);
}
