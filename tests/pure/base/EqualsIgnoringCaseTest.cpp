#include "EqualsIgnoringCase.h"

#include <gtest/gtest.h>

#include <string>

TEST(EqualsIgnoringCase, ComparesWholeTextsApartFromLetterCase)
{
    EXPECT_TRUE(EqualsIgnoringCase("WINDOWS vista", "Windows Vista"));
    EXPECT_FALSE(EqualsIgnoringCase("Windows Vista ", "Windows Vista"));
    EXPECT_FALSE(EqualsIgnoringCase("Windows", "Windows Vista"));
    EXPECT_FALSE(EqualsIgnoringCase("", "Windows Vista"));
}

TEST(EqualsIgnoringCase, EveryLetterHasItsOtherCaseAndNoOtherByteHasOne)
{
    for (int value = 0; value < 256; ++value) {
        const char byte = static_cast<char>(value);
        const bool upper = byte >= 'A' && byte <= 'Z';
        const bool lower = byte >= 'a' && byte <= 'z';
        const char other = static_cast<char>(value ^ 0x20);
        EXPECT_EQ(upper || lower, EqualsIgnoringCase(std::string(1, byte), std::string(1, other))) << value;
    }
}
