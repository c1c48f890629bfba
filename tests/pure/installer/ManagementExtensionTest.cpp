#include "ManagementExtension.h"

#include <gtest/gtest.h>

#include <stdexcept>

TEST(ManagementExtension, SixteenTwoAndLaterAllowTheUpdate)
{
    for (const char* version : {"16.2", "16.2.0.1", "16.10", "17.0", "17.0.1", "100.0", "16.2beta"}) {
        EXPECT_TRUE(ManagementExtensionAllowsUpdate(version)) << version;
    }
}

TEST(ManagementExtension, OlderVersionsDoNot)
{
    for (const char* version : {"16.1", "16.1.9", "15.9", "0.0", "a.b", "16..2", "-17.0", "16.-2"}) {
        EXPECT_FALSE(ManagementExtensionAllowsUpdate(version)) << version;
    }
}

TEST(ManagementExtension, TextWithoutTwoPartsIsAFault)
{
    for (const char* version : {"", "17", "17."}) {
        EXPECT_THROW(static_cast<void>(ManagementExtensionAllowsUpdate(version)), std::out_of_range) << version;
    }
}
