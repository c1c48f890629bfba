#include "ProberStatus.h"

#include <gtest/gtest.h>

#include "StringIds.h"

TEST(ProberStatus, EachKnownStatusHasItsMessage)
{
    EXPECT_EQ(kStringAdministratorNeeded, MessageForProberStatus(0x80640008, "Windows Vista"));
    EXPECT_EQ(kStringNoAdapter, MessageForProberStatus(0x80640010, "Windows Vista"));
    EXPECT_EQ(kStringNotReady, MessageForProberStatus(0x80640011, "Windows Vista"));
}

TEST(ProberStatus, UnsupportedSystemNamesWindowsNtOnlyThere)
{
    EXPECT_EQ(kStringWindowsNTUnsupported, MessageForProberStatus(0x80640013, "windows nt"));
    EXPECT_EQ(kStringSystemUnsupported, MessageForProberStatus(0x80640013, "Windows 98"));
    EXPECT_EQ(kStringSystemUnsupported, MessageForProberStatus(0x80640013, ""));
}

TEST(ProberStatus, OtherStatusesHaveNoMessage)
{
    for (const uint32_t status : {1U, 0x80640012U, 0x80640009U, 0x8007007EU, 0xFFFFFFFFU}) {
        EXPECT_FALSE(MessageForProberStatus(status, "Windows NT").has_value()) << status;
    }
}
