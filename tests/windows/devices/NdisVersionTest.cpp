#include "NdisVersion.h"

#include <gtest/gtest.h>

#include "AdapterDevices.h"
#include "FileOpens.h"
#include "Handles.h"
#include "PrivateRequest.h"

TEST(NdisVersion, AbsentInterfaceIsNotFiveTwo)
{
    HANDLE device = nullptr;
    EXPECT_EQ(OpenNdisDevice(device), 1) << "the result says nothing, the handle does";
    EXPECT_EQ(device, INVALID_HANDLE_VALUE);
    EXPECT_FALSE(IsNdis52OrLater());
}

TEST(NdisVersion, FiveTwoAndLaterOfARunningInterfaceCount)
{
    TestAdapterDriver driver(TestDriverFile(), {}, 0x00050001);
    EXPECT_FALSE(IsNdis52OrLater());
    driver.SetNdisVersion(0x00050002);
    EXPECT_TRUE(IsNdis52OrLater());
    driver.SetNdisVersion(0x00060000);
    EXPECT_TRUE(IsNdis52OrLater());
    driver.SetNdisVersion(0x0004FFFF);
    EXPECT_FALSE(IsNdis52OrLater());
    EXPECT_EQ(driver.WhatWasAsked().versionQueries, 4U);
}

TEST(NdisVersion, AnswerThatComesLateIsWaitedFor)
{
    TestAdapterDriver driver(TestDriverFile(), {}, 0x00060014);
    driver.AnswerNdisVersionLate(200);
    EXPECT_TRUE(IsNdis52OrLater());
}

TEST(NdisVersion, FailedRequestIsNotFiveTwo)
{
    TestAdapterDriver driver(TestDriverFile(), {}, 0x00060000);
    driver.FailNdisVersion(0xC0000001);
    EXPECT_FALSE(IsNdis52OrLater());
    EXPECT_EQ(driver.WhatWasAsked().versionQueries, 1U);
    driver.FailNdisVersion(0);
    EXPECT_TRUE(IsNdis52OrLater());
}

TEST(NdisVersion, DeviceOpensForTheCallerToClose)
{
    TestAdapterDriver driver(TestDriverFile(), {}, 0x00060000);
    HANDLE device = INVALID_HANDLE_VALUE;
    EXPECT_EQ(OpenNdisDevice(device), 1);
    ASSERT_NE(device, INVALID_HANDLE_VALUE);
    EXPECT_NE(CloseHandle(device), FALSE);
}

TEST(NdisVersion, ThousandCallsLeaveNoHandleOpen)
{
    TestAdapterDriver driver(TestDriverFile(), {}, 0x00060000);
    EXPECT_EQ(HandlesLeftBy(1000, [] { static_cast<void>(IsNdis52OrLater()); }), 0);
    EXPECT_TRUE(driver.WaitUntilAllIsClosed());
}

TEST(NdisVersion, DeviceIsOpenedLikeAnAdapters)
{
    const FileOpens opens;
    HANDLE opened = INVALID_HANDLE_VALUE;
    OpenNdisDevice(opened);
    const UniqueFile device(opened);
    const UniqueFile adapter(OpenAdapterDevice("NDIS"));
    ASSERT_EQ(opens.Calls().size(), 2U);
    EXPECT_EQ(opens.Calls()[0].name, R"(\\.\NDIS)");
    EXPECT_EQ(opens.Calls()[0], opens.Calls()[1]);
}
