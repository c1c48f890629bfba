#include "ResultRecords.h"

#include <gtest/gtest.h>

TEST(ResultRecords, TheFamilyIsTheNameBeforeInstall)
{
    EXPECT_EQ(FamilyOfRecord("TAVG_PCIE_Install"), "TAVG_PCIE");
    EXPECT_EQ(FamilyOfRecord("TAVX_Install"), "TAVX");
}

TEST(ResultRecords, OtherValuesBelongToNoFamily)
{
    for (const char* name : {"", "Install", "_Install", "Version", "TAVX_Version", "TAVX_install", "TAVX_Install2"}) {
        EXPECT_EQ(FamilyOfRecord(name), "") << name;
    }
}

TEST(ResultRecords, FailuresOfTheRunAndOfFamiliesAreFailureRecords)
{
    EXPECT_TRUE(IsFailureRecord("Install", "FAILURE"));
    EXPECT_TRUE(IsFailureRecord("TAVF_Install", "FAILURE"));
}

TEST(ResultRecords, SuccessesAndOtherValuesAreNotFailureRecords)
{
    EXPECT_FALSE(IsFailureRecord("Install", "SUCCESS"));
    EXPECT_FALSE(IsFailureRecord("Install", "failure"));
    EXPECT_FALSE(IsFailureRecord("Install", ""));
    EXPECT_FALSE(IsFailureRecord("TAVF_Install", "SUCCESS"));
    EXPECT_FALSE(IsFailureRecord("Reboot", "FAILURE"));
    EXPECT_FALSE(IsFailureRecord("OtherInstall", "FAILURE"));
}
