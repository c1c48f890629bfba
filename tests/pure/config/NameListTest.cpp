#include "NameList.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

TEST(ContainsName, IgnoresLetterCaseAndComparesWholeNames)
{
    const std::vector<std::string> names{"qdatdma.inf", "TAV1.INF"};
    EXPECT_TRUE(ContainsName(names, "QDATDMA.INF"));
    EXPECT_TRUE(ContainsName(names, "tav1.inf"));
    EXPECT_FALSE(ContainsName(names, "tav1"));
    EXPECT_FALSE(ContainsName(names, "tav1.inf "));
    EXPECT_FALSE(ContainsName(names, ""));
    EXPECT_FALSE(ContainsName({}, "tav1.inf"));
}
