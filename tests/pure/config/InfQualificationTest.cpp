#include "InfQualification.h"

#include <gtest/gtest.h>

TEST(ExpectedSignature, FollowsTheFamily)
{
    EXPECT_EQ(ExpectedSignature("Windows Millenium"), "$Chicago$");
    EXPECT_EQ(ExpectedSignature("Windows 98"), "$Chicago$");
    EXPECT_EQ(ExpectedSignature("Windows Whistler"), "$Windows NT$");
    EXPECT_EQ(ExpectedSignature("Windows 2000"), "$Windows NT$");
    EXPECT_EQ(ExpectedSignature("Windows Vista"), "$Windows NT$");
}

TEST(ExpectedSignature, IsEmptyForAnyOtherFamily)
{
    for (const char* const family :
         {"", "Windows NT", "windows vista", "Windows Vista ", "Windows Millennium", "WINDOWS 98", "Windows"}) {
        EXPECT_EQ(ExpectedSignature(family), "") << family;
    }
}

TEST(NamesOurBrand, ABrandBetweenCommasAndBlanksCounts)
{
    for (const char* const value : {"Norda", "NORDA", "Lumarc", "NORDA,NTamd64", "Norda, NTamd64, NTx86.6.0",
                                    "Norda Networks", " Norda", "NTamd64,Lumarc", ",, NORDA ,,"}) {
        EXPECT_TRUE(NamesOurBrand(value)) << value;
    }
}

TEST(NamesOurBrand, OtherSpellingsAndLongerWordsDoNot)
{
    for (const char* const value : {"", " ", ",", "norda", "nOrDa", "lumarc", "LUMARC", "Norda.NTamd64", "NordaNet",
                                    "\"Norda\"", "Norda\tInc", "%Norda%", "XNorda,NTamd64"}) {
        EXPECT_FALSE(NamesOurBrand(value)) << value;
    }
}
