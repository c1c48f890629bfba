#include "PrivateRequest.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstring>

#include "AdapterDevices.h"
#include "CallCount.h"
#include "FileOpens.h"
#include "Handles.h"
#include "ImportOverride.h"
#include "MemoryShortage.h"

namespace {
constexpr uint32_t kUnsuccessful = 0xC0000001;
constexpr uint32_t kNotSupported = 0xC00000BB;

/// The outputs of a query, filled with what none of them may keep.
struct Query
{
    uint32_t bytesReturned = 0xAAAAAAAA;
    uint32_t bytesNeeded = 0xAAAAAAAA;
    uint32_t error = 0xAAAAAAAA;
    uint32_t status = 0xAAAAAAAA;
    DWORD lastError = 0xAAAAAAAA;
};

Query Ask(HANDLE device, uint32_t oid, void* data, uint32_t dataBytes)
{
    Query query;
    query.status = QueryPrivateOid(device, oid, data, dataBytes, query.bytesReturned, query.bytesNeeded, query.error);
    query.lastError = GetLastError();
    return query;
}

class PrivateRequests : public testing::Test
{
protected:
    TestAdapterDriver driver{TestDriverFile(), {{kTestInstance, kTestPrivateName}}};
    UniqueFile adapter{OpenAdapterDevice(kTestInstance)};
};
} // namespace

TEST(AdapterDevice, AbsentDeviceDoesNotOpen)
{
    EXPECT_EQ(OpenAdapterDevice("{00000000-0000-0000-0000-000000000000}"), INVALID_HANDLE_VALUE);
    EXPECT_EQ(OpenAdapterDevice(""), INVALID_HANDLE_VALUE);
    EXPECT_EQ(OpenAdapterDevice(std::string(4096, 'x')), INVALID_HANDLE_VALUE);
}

TEST(PrivateDevice, OfAnAdapterThatIsNotOpenIsAnInvalidHandle)
{
    SetLastError(0);
    EXPECT_EQ(OpenPrivateDevice(INVALID_HANDLE_VALUE), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_HANDLE});
}

TEST(PrivateQuery, WithoutADeviceIsUnsuccessfulWithInvalidHandle)
{
    std::array<char, 4> data{'a', 'b', 'c', 'd'};
    const Query query = Ask(INVALID_HANDLE_VALUE, 1, data.data(), data.size());
    EXPECT_EQ(query.status, kUnsuccessful);
    EXPECT_EQ(query.error, 6U);
    EXPECT_EQ(query.lastError, 6U);
    EXPECT_EQ(query.bytesReturned, 0U);
    EXPECT_EQ(query.bytesNeeded, 0U);
    EXPECT_EQ(std::memcmp(data.data(), "abcd", 4), 0);
}

TEST_F(PrivateRequests, AdapterDeviceIsAskedForThePrivateDevicesName)
{
    ASSERT_TRUE(adapter.IsOpen());
    const UniqueFile device(OpenPrivateDevice(adapter.Get()));
    EXPECT_TRUE(device.IsOpen());
    EXPECT_EQ(driver.WhatWasAsked(kTestInstance).nameQueries, 1U);
    EXPECT_EQ(driver.WhatWasAsked(kTestInstance).lastOid, 0xFF0201A9);
}

TEST_F(PrivateRequests, NameThatComesLateIsWaitedFor)
{
    driver.AnswerLate(kTestInstance, 200);
    const DWORD start = GetTickCount();
    const UniqueFile device(OpenPrivateDevice(adapter.Get()));
    EXPECT_TRUE(device.IsOpen());
    EXPECT_GE(GetTickCount() - start, 150U) << "the answer was not late";
}

TEST_F(PrivateRequests, NameWithoutATerminatorEndsWhereTheAnswerEnds)
{
    driver.AnswerDeviceName(kTestInstance, kTestPrivateName);
    const UniqueFile device(OpenPrivateDevice(adapter.Get()));
    EXPECT_TRUE(device.IsOpen());
}

TEST_F(PrivateRequests, NameOfNoDeviceDoesNotOpen)
{
    driver.AnswerDeviceName(kTestInstance, std::string("{No such device}") + '\0');
    EXPECT_EQ(OpenPrivateDevice(adapter.Get()), INVALID_HANDLE_VALUE);
    driver.AnswerDeviceName(kTestInstance, "");
    EXPECT_EQ(OpenPrivateDevice(adapter.Get()), INVALID_HANDLE_VALUE);
}

TEST_F(PrivateRequests, FailedNameQueryYieldsNoDevice)
{
    driver.FailDeviceName(kTestInstance, 0xC00000BB);
    EXPECT_EQ(OpenPrivateDevice(adapter.Get()), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_NOT_SUPPORTED});
    driver.AnswerLate(kTestInstance, 50);
    EXPECT_EQ(OpenPrivateDevice(adapter.Get()), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_NOT_SUPPORTED});
}

TEST(PrivateDevice, NameThatFillsAll252BytesIsTakenWholeAndNotReadPastItsEnd)
{
    const std::string name(252, 'n');
    TestAdapterDriver driver(TestDriverFile(), {{kTestInstance, name}});
    driver.AnswerDeviceName(kTestInstance, name);
    const UniqueFile adapter(OpenAdapterDevice(kTestInstance));
    const UniqueFile device(OpenPrivateDevice(adapter.Get()));
    EXPECT_TRUE(device.IsOpen()) << "the device of exactly this name exists";
    // Longer answers are cut by the device itself: the buffer is full.
    driver.AnswerDeviceName(kTestInstance, name + "more");
    const UniqueFile again(OpenPrivateDevice(adapter.Get()));
    EXPECT_TRUE(again.IsOpen());
    driver.AnswerDeviceName(kTestInstance, std::string(252, 'x'));
    EXPECT_EQ(OpenPrivateDevice(adapter.Get()), INVALID_HANDLE_VALUE);
}

TEST_F(PrivateRequests, QuerySendsTheDataAndBringsTheAnswer)
{
    driver.AnswerPrivateRequest(kTestInstance, {.status = 0, .data = "answer", .length = std::nullopt});
    const UniqueFile device(OpenPrivateDevice(adapter.Get()));
    std::array<char, 8> data{'q', 'u', 'e', 's', 't', 'i', 'o', 'n'};
    const Query query = Ask(device.Get(), 0xFF020195, data.data(), data.size());
    EXPECT_EQ(query.status, 0U);
    EXPECT_EQ(query.error, 0U);
    EXPECT_EQ(query.lastError, 0U);
    EXPECT_EQ(query.bytesReturned, 6U);
    EXPECT_EQ(query.bytesNeeded, 0U);
    EXPECT_EQ(std::string(data.data(), data.size()), "answeron");
    EXPECT_EQ(driver.WhatWasAsked(kTestInstance).lastOid, 0xFF020195);
    EXPECT_EQ(driver.WhatWasAsked(kTestInstance).lastData, "question");
}

TEST_F(PrivateRequests, UnknownOidIsError50)
{
    driver.AnswerPrivateRequest(kTestInstance, {.status = kNotSupported, .data = "", .length = std::nullopt});
    const UniqueFile device(OpenPrivateDevice(adapter.Get()));
    uint32_t data = 0;
    const Query query = Ask(device.Get(), 0xFF020195, &data, sizeof(data));
    EXPECT_EQ(query.status, kNotSupported);
    EXPECT_EQ(query.error, 50U);
    EXPECT_EQ(query.lastError, 50U);
    EXPECT_EQ(query.bytesReturned, 0U);
    EXPECT_EQ(query.bytesNeeded, 0U);
}

TEST_F(PrivateRequests, AnyOtherStatusIsError31WithTheBytesNeeded)
{
    driver.AnswerPrivateRequest(kTestInstance, {.status = 0xC0000023, .data = "ab", .length = 32});
    const UniqueFile device(OpenPrivateDevice(adapter.Get()));
    std::array<char, 2> data{};
    const Query query = Ask(device.Get(), 0xFF020195, data.data(), data.size());
    EXPECT_EQ(query.status, 0xC0000023);
    EXPECT_EQ(query.error, 31U);
    EXPECT_EQ(query.lastError, 31U);
    EXPECT_EQ(query.bytesNeeded, 32U);
    EXPECT_EQ(query.bytesReturned, 2U);
    EXPECT_EQ(std::string(data.data(), data.size()), "ab");
}

TEST_F(PrivateRequests, LengthBeyondTheDataReturnsOnlyWhatThereIs)
{
    driver.AnswerPrivateRequest(kTestInstance, {.status = 0, .data = "abcdef", .length = 0xFFFFFFFF});
    const UniqueFile device(OpenPrivateDevice(adapter.Get()));
    std::array<char, 8> memory{'.', '.', '.', '.', '.', '.', '.', '.'};
    const Query query = Ask(device.Get(), 1, memory.data(), 4);
    EXPECT_EQ(query.status, 0U);
    EXPECT_EQ(query.bytesReturned, 4U);
    EXPECT_EQ(std::string(memory.data(), memory.size()), "abcd....");
}

TEST_F(PrivateRequests, QueryWithoutDataIsPossible)
{
    driver.AnswerPrivateRequest(kTestInstance, {.status = 0, .data = "", .length = 4});
    const UniqueFile device(OpenPrivateDevice(adapter.Get()));
    const Query query = Ask(device.Get(), 1, nullptr, 0);
    EXPECT_EQ(query.status, 0U);
    EXPECT_EQ(query.bytesReturned, 0U);
}

TEST_F(PrivateRequests, FailedRequestIsUnsuccessfulWithTheSystemsError)
{
    driver.FailPrivateRequest(kTestInstance, 0xC0000022);
    const UniqueFile device(OpenPrivateDevice(adapter.Get()));
    uint32_t data = 0x12345678;
    const Query query = Ask(device.Get(), 1, &data, sizeof(data));
    EXPECT_EQ(query.status, kUnsuccessful);
    EXPECT_EQ(query.error, uint32_t{ERROR_ACCESS_DENIED});
    EXPECT_EQ(query.lastError, DWORD{ERROR_ACCESS_DENIED});
    EXPECT_EQ(query.bytesReturned, 0U);
    EXPECT_EQ(query.bytesNeeded, 0U);
    EXPECT_EQ(data, 0x12345678U);
}

TEST_F(PrivateRequests, DeviceThatKnowsNoPrivateRequestIsUnsuccessful)
{
    uint32_t data = 0;
    const Query query = Ask(adapter.Get(), 1, &data, sizeof(data));
    EXPECT_EQ(query.status, kUnsuccessful);
    EXPECT_EQ(query.error, uint32_t{ERROR_INVALID_FUNCTION});
}

TEST_F(PrivateRequests, LateAnswerIsWaitedFor)
{
    driver.AnswerBootMode(kTestInstance, 2);
    const UniqueFile device(OpenPrivateDevice(adapter.Get()));
    driver.AnswerLate(kTestInstance, 200);
    uint32_t mode = 0;
    const Query query = Ask(device.Get(), 0xFF020195, &mode, sizeof(mode));
    EXPECT_EQ(query.status, 0U);
    EXPECT_EQ(mode, 2U);
}

TEST(PrivateQuery, DataWithoutA32BitLengthInTheRequestIsOutOfMemory)
{
    TestAdapterDriver driver(TestDriverFile(), {{kTestInstance, kTestPrivateName}});
    const UniqueFile device(OpenAdapterDevice(kTestInstance));
    char data = 'd';
    // The data is not read: no request can be made for it.
    const Query query = Ask(device.Get(), 1, &data, 0xFFFFFFFF);
    EXPECT_EQ(query.status, kUnsuccessful);
    EXPECT_EQ(query.error, 8U);
    EXPECT_EQ(query.lastError, 8U);
    EXPECT_EQ(driver.WhatWasAsked(kTestInstance).privateRequests, 0U);
}

TEST_F(PrivateRequests, DevicesAreOpenedWithTheirAccessSharingAndFlags)
{
    const FileOpens opens;
    const UniqueFile again(OpenAdapterDevice(kTestInstance));
    const UniqueFile device(OpenPrivateDevice(adapter.Get()));
    EXPECT_THAT(opens.Calls(), testing::ElementsAre(FileOpens::Call{.name = std::string(R"(\\.\)") + kTestInstance,
                                                                    .access = GENERIC_READ | GENERIC_WRITE,
                                                                    .sharing = 0,
                                                                    .disposition = OPEN_EXISTING,
                                                                    .flags = FILE_FLAG_OVERLAPPED},
                                                    FileOpens::Call{.name = std::string(R"(\\.\)") + kTestPrivateName,
                                                                    .access = 0,
                                                                    .sharing = FILE_SHARE_READ,
                                                                    .disposition = OPEN_EXISTING,
                                                                    .flags = FILE_ATTRIBUTE_READONLY}));
}

namespace {
struct DeviceRequest
{
    DWORD code = 0;
    DWORD inputBytes = 0;
    DWORD outputBytes = 0;
    bool oneBuffer = false;
    bool operator==(const DeviceRequest&) const = default;
};
std::vector<DeviceRequest> deviceRequests;
decltype(&DeviceIoControl) platformRequest = nullptr;

BOOL WINAPI NoteRequest(HANDLE device, DWORD code, LPVOID input, DWORD inputBytes, LPVOID output, DWORD outputBytes,
                        LPDWORD returned, LPOVERLAPPED overlapped)
{
    deviceRequests.push_back({code, inputBytes, outputBytes, input == output});
    return platformRequest(device, code, input, inputBytes, output, outputBytes, returned, overlapped);
}
} // namespace

TEST_F(PrivateRequests, DeviceIsAskedForItsNameWith252BytesAndPrivatelyWithOneBufferForQuestionAndAnswer)
{
    deviceRequests.clear();
    const ImportOverride note("DeviceIoControl", InPlaceOf(platformRequest, &DeviceIoControl, &NoteRequest));
    const UniqueFile device(OpenPrivateDevice(adapter.Get()));
    ASSERT_TRUE(device.IsOpen());
    EXPECT_THAT(deviceRequests, testing::ElementsAre(DeviceRequest{0x00170002, 4, 252, false}));
    for (const uint32_t dataBytes : {0U, 4U, 100U}) {
        deviceRequests.clear();
        std::array<char, 100> data{};
        EXPECT_EQ(Ask(device.Get(), 1, data.data(), dataBytes).status, 0U);
        EXPECT_THAT(deviceRequests,
                    testing::ElementsAre(DeviceRequest{0x00172800, dataBytes + 12, dataBytes + 12, true}));
    }
}

TEST_F(PrivateRequests, RequestThatCannotBeAllocatedIsUnsuccessfulWithError8AndNotSent)
{
    constexpr uint32_t kBytes = 100000;
    const UniqueFile device(OpenPrivateDevice(adapter.Get()));
    ASSERT_TRUE(device.IsOpen());
    std::string data(kBytes, 'd');
    const std::string before = data;
    const CallCount requests("DeviceIoControl");
    {
        // The data has 12 bytes less than the request.
        const MemoryShortage shortage(kBytes + 12);
        const Query query = Ask(device.Get(), 1, data.data(), kBytes);
        EXPECT_EQ(query.status, kUnsuccessful);
        EXPECT_EQ(query.error, 8U);
        EXPECT_EQ(query.lastError, 8U);
        EXPECT_EQ(query.bytesReturned, 0U);
        EXPECT_EQ(query.bytesNeeded, 0U);
    }
    EXPECT_EQ(requests.Calls(), 0U);
    EXPECT_EQ(data, before);
    EXPECT_EQ(Ask(device.Get(), 1, data.data(), kBytes).status, 0U) << "the shortage was the reason";
}
