#include "DcbQuery.h"

#include <gtest/gtest.h>

TEST(DcbQuery, AsksTheStandardNameSpaceForTheDcbxSettings)
{
    EXPECT_STREQ(kDcbNameSpace, L"root\\standardcimv2");
    EXPECT_STREQ(kDcbQuery, L"SELECT * FROM MSFT_NetQosDcbxSettingData");
}
