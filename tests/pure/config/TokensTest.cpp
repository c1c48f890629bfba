#include "Tokens.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

using testing::ElementsAre;
using testing::IsEmpty;

namespace {
std::vector<std::string> All(std::string_view text, std::string_view delimiters)
{
    TokenCursor cursor(text);
    std::vector<std::string> tokens;
    while (const auto token = cursor.Next(delimiters)) {
        tokens.emplace_back(*token);
    }
    return tokens;
}
} // namespace

TEST(TokenCursor, SkipsDelimitersSoThatNoTokenIsEmpty)
{
    EXPECT_THAT(All(" ,a,, b ,", ", "), ElementsAre("a", "b"));
    EXPECT_THAT(All("a", ", "), ElementsAre("a"));
    EXPECT_THAT(All(" , ,", ", "), IsEmpty());
    EXPECT_THAT(All("", ", "), IsEmpty());
}

TEST(TokenCursor, ConsumesOneDelimiterAfterAToken)
{
    TokenCursor cursor("a==b\\c");
    EXPECT_EQ(cursor.Next("="), "a");
    EXPECT_EQ(cursor.Next("\\"), "=b");
    EXPECT_EQ(cursor.Next("\\"), "c");
}

TEST(TokenCursor, StaysAtItsEnd)
{
    TokenCursor cursor("a=");
    EXPECT_EQ(cursor.Next("="), "a");
    EXPECT_FALSE(cursor.Next("="));
    EXPECT_FALSE(cursor.Next("a"));

    TokenCursor delimiters("==");
    EXPECT_FALSE(delimiters.Next("="));
    EXPECT_FALSE(delimiters.Next("a"));
}
