#include "DriverVersion.h"

#include <gtest/gtest.h>

namespace {
struct ParseRow
{
    std::string_view text;
    DriverVersion expected;
};

using Version = std::array<uint32_t, 4>;
using Date = std::array<uint32_t, 3>;
} // namespace

TEST(DriverVersion, IsReadWithBlanksQuotesDashesAndCommentsAroundIt)
{
    const std::array rows = std::to_array<ParseRow>({
        {"10/01/2012,11.4.63.0", {Version{11, 4, 63, 0}, Date{2012, 10, 1}}},
        {" 1/2/2003 , 5.6 ; comment, 9.9", {Version{5, 6, 0, 0}, Date{2003, 1, 2}}},
        {"\"10-01-2012,1.2.3.4\"", {Version{1, 2, 3, 4}, Date{2012, 10, 1}}},
        {"10/01/2012", {std::nullopt, Date{2012, 10, 1}}},
        {"13/01/2012,1.0", {Version{1, 0, 0, 0}, std::nullopt}},
        {"10/01/2012,1.2.3.4.5", {std::nullopt, Date{2012, 10, 1}}},
        {"10/01/2012,1..2", {std::nullopt, Date{2012, 10, 1}}},
        {"10/01/2012,99999999999.1", {std::nullopt, Date{2012, 10, 1}}},
        {"%DriverVer%", {}},
        {"", {}},
    });
    for (const ParseRow& row : rows) {
        EXPECT_EQ(row.expected, ParseDriverVersion(row.text)) << row.text;
    }
}

TEST(DriverVersion, IsComparedAsNumbersAndTheDateDecidesOnlyBetweenEqualVersions)
{
    const auto compare = [](std::string_view left, std::string_view right) {
        return Compare(ParseDriverVersion(left), ParseDriverVersion(right));
    };
    EXPECT_EQ(std::partial_ordering::greater, compare("1/1/2001,1.10.0.0", "1/1/2012,1.9.0.0"));
    EXPECT_EQ(std::partial_ordering::less, compare("1/1/2001,1.0", "1/2/2001,1.0"));
    EXPECT_EQ(std::partial_ordering::equivalent, compare("1/1/2001,1.0", "1/1/2001,1.0.0"));
    EXPECT_EQ(std::partial_ordering::equivalent, compare("x,1.0", "1/1/2001,1.0"));
    EXPECT_EQ(std::partial_ordering::greater, compare("1/2/2001,x", "1/1/2001,7"));
    EXPECT_EQ(std::partial_ordering::unordered, compare("1/1/2001,x", "x,1.0"));
}
