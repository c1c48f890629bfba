#include "IScsiAdapter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "AdapterDevices.h"
#include "CallCount.h"
#include "DebugOutput.h"
#include "DevicePassState.h"
#include "FileOpens.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {
class IScsiAdapter : public testing::Test
{
protected:
    IScsiAdapter() { DevicePassState = {}; }
    ~IScsiAdapter() override { DevicePassState = {}; }

    /// Asks the adapter and expects what never changes.
    bool FoundAfterAsking()
    {
        DevicePassState = {};
        EXPECT_EQ(IsIScsiAdapter(kTestInstance), 0) << "only the indicator shows what was found";
        return DevicePassState.storageAdapterFound;
    }

    TestAdapterDriver driver{TestDriverFile(), {{kTestInstance, kTestPrivateName}}};
};
} // namespace

TEST_F(IScsiAdapter, BootModesTwoAndThreeAreFoundThoughTheResultIsZero)
{
    for (const uint32_t mode : {2U, 3U}) {
        driver.AnswerBootMode(kTestInstance, mode);
        TraceCapture trace;
        EXPECT_TRUE(FoundAfterAsking()) << mode;
        EXPECT_THAT(trace.Messages(), ElementsAre("Found iSCSI adapter"));
    }
}

TEST_F(IScsiAdapter, OtherBootModesAreNotFoundAndNotTraced)
{
    for (const uint32_t mode : {0U, 1U, 4U, 0xFFFFFFFFU}) {
        driver.AnswerBootMode(kTestInstance, mode);
        TraceCapture trace;
        EXPECT_FALSE(FoundAfterAsking()) << mode;
        EXPECT_THAT(trace.Messages(), IsEmpty());
    }
}

TEST_F(IScsiAdapter, IsAskedForItsBootModeWithFourBytes)
{
    static_cast<void>(FoundAfterAsking());
    const TestAdapterDriver::Asked asked = driver.WhatWasAsked(kTestInstance);
    EXPECT_EQ(asked.nameQueries, 1U);
    EXPECT_EQ(asked.privateRequests, 1U);
    EXPECT_EQ(asked.lastOid, 0xFF020195);
    EXPECT_EQ(asked.lastData, std::string(4, '\0'));
}

TEST_F(IScsiAdapter, OnceFoundNoFurtherAdapterIsAsked)
{
    DevicePassState.storageAdapterFound = true;
    EXPECT_EQ(IsIScsiAdapter(kTestInstance), 1);
    EXPECT_EQ(driver.WhatWasAsked(kTestInstance).opens, 0U);
}

TEST_F(IScsiAdapter, DriverThatDoesNotKnowTheQuestionIsNotAnIScsiAdapter)
{
    // Even when bytes that look like a boot mode come with that status.
    driver.AnswerPrivateRequest(kTestInstance,
                                {.status = 0xC00000BB, .data = std::string("\2\0\0\0", 4), .length = std::nullopt});
    EXPECT_FALSE(FoundAfterAsking());
    EXPECT_EQ(driver.WhatWasAsked(kTestInstance).privateRequests, 1U);
}

TEST_F(IScsiAdapter, OtherStatusAndFailedRequestAreNotAnIScsiAdapter)
{
    driver.AnswerPrivateRequest(kTestInstance,
                                {.status = 0xC0000001, .data = std::string("\2\0\0\0", 4), .length = std::nullopt});
    EXPECT_FALSE(FoundAfterAsking());
    driver.AnswerBootMode(kTestInstance, 2);
    driver.FailPrivateRequest(kTestInstance, 0xC0000001);
    EXPECT_FALSE(FoundAfterAsking());
    driver.FailPrivateRequest(kTestInstance, 0);
    driver.FailDeviceName(kTestInstance, 0xC0000001);
    EXPECT_FALSE(FoundAfterAsking());
    driver.FailDeviceName(kTestInstance, 0);
    EXPECT_TRUE(FoundAfterAsking()) << "the failures above were the reason";
}

TEST_F(IScsiAdapter, PrivateDeviceOfANullHandleIsNotAsked)
{
    driver.AnswerBootMode(kTestInstance, 2);
    const FileOpens opens(std::string(R"(\\.\)") + kTestPrivateName);
    const CallCount requests("DeviceIoControl");
    EXPECT_FALSE(FoundAfterAsking());
    EXPECT_EQ(opens.Calls().size(), 2U) << "the private device's name was asked for and tried";
    EXPECT_EQ(requests.Calls(), 1U) << "the name was the only question";
}

TEST_F(IScsiAdapter, LengthBeyondTheBufferStillGivesTheBootMode)
{
    driver.AnswerPrivateRequest(kTestInstance, {.status = 0, .data = std::string("\3\0\0\0", 4), .length = 4096});
    EXPECT_TRUE(FoundAfterAsking());
}

TEST_F(IScsiAdapter, AnswerOfNoBytesIsBootModeZero)
{
    driver.AnswerPrivateRequest(kTestInstance, {.status = 0, .data = std::string("\2\0\0\0", 4), .length = 0});
    EXPECT_FALSE(FoundAfterAsking());
}

TEST_F(IScsiAdapter, LateAnswersAreWaitedFor)
{
    driver.AnswerBootMode(kTestInstance, 2);
    driver.AnswerLate(kTestInstance, 100);
    EXPECT_TRUE(FoundAfterAsking());
}

TEST_F(IScsiAdapter, ThousandCallsLeaveNoHandleOpen)
{
    EXPECT_EQ(HandlesLeftBy(1000, [this] { static_cast<void>(FoundAfterAsking()); }), 0);
    EXPECT_EQ(driver.WhatWasAsked(kTestInstance).opens, 2002U) << "the adapter's device and its private one, each time";
    EXPECT_TRUE(driver.WaitUntilAllIsClosed(kTestInstance));
}

TEST(IScsiAdapterWithoutDevice, AbsentDeviceIsNotAnIScsiAdapter)
{
    DevicePassState = {};
    TraceCapture trace;
    for (const std::string& instance : {std::string(kTestInstance), std::string(), std::string(4096, 'x')}) {
        SetLastError(0);
        EXPECT_EQ(IsIScsiAdapter(instance), 0);
        EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_HANDLE}) << "the device that did not open was still asked";
    }
    EXPECT_FALSE(DevicePassState.storageAdapterFound);
    EXPECT_THAT(trace.Messages(), IsEmpty());
}

TEST(IScsiAdapterWithoutDevice, ThousandCallsLeaveNoHandleOpen)
{
    DevicePassState = {};
    EXPECT_EQ(HandlesLeftBy(1000, [] { static_cast<void>(IsIScsiAdapter(kTestInstance)); }), 0);
}
