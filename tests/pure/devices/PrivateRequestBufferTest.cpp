#include "PrivateRequestBuffer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <initializer_list>
#include <vector>

using testing::ElementsAre;
using testing::ElementsAreArray;

namespace {
std::vector<std::byte> Bytes(std::initializer_list<int> numbers)
{
    std::vector<std::byte> bytes;
    for (const int number : numbers) {
        bytes.push_back(static_cast<std::byte>(number));
    }
    return bytes;
}

/// A request whose buffer a driver has overwritten with `bytes`.
PrivateRequestBuffer AnsweredWith(const std::vector<std::byte>& bytes)
{
    PrivateRequestBuffer buffer = MakePrivateRequest(0, std::vector<std::byte>(bytes.size() - kPrivateHeaderBytes));
    std::copy(bytes.begin(), bytes.end(), buffer.bytes.get());
    return buffer;
}
} // namespace

TEST(PrivateRequestBuffer, CarriesTheOidTwoZeroFieldsAndTheData)
{
    const PrivateRequestBuffer buffer = MakePrivateRequest(0xFF020195, Bytes({1, 2, 3}));
    EXPECT_EQ(buffer.size, 15U);
    EXPECT_THAT(buffer.All(), ElementsAreArray(Bytes({0x95, 0x01, 0x02, 0xFF, 0, 0, 0, 0, 0, 0, 0, 0, 1, 2, 3})));
}

TEST(PrivateRequestBuffer, WithoutDataIsTheHeaderAlone)
{
    EXPECT_EQ(MakePrivateRequest(1, {}).size, 12U);
}

TEST(PrivateRequestBuffer, DataWithoutA32BitLengthMakesNoRequest)
{
    // Only the length is read: the memory does not exist.
    const std::span<const std::byte> tooLong(static_cast<const std::byte*>(nullptr), 0xFFFFFFFF - 11);
    EXPECT_EQ(MakePrivateRequest(1, tooLong).bytes, nullptr);
    EXPECT_EQ(MakePrivateRequest(1, tooLong).size, 0U);
}

TEST(PrivateAnswer, SuccessReturnsTheBytesWrittenAndNeedsNone)
{
    std::array<std::byte, 4> data{};
    const PrivateAnswer answer =
        ReadPrivateAnswer(AnsweredWith(Bytes({9, 9, 9, 9, 0, 0, 0, 0, 4, 0, 0, 0, 3, 0, 1, 2})), data);
    EXPECT_EQ(answer.status, 0U);
    EXPECT_EQ(answer.bytesReturned, 4U);
    EXPECT_EQ(answer.bytesNeeded, 0U);
    EXPECT_EQ(answer.error, 0U);
    EXPECT_THAT(data, ElementsAreArray(Bytes({3, 0, 1, 2})));
}

TEST(PrivateAnswer, ShorterAnswerLeavesTheRestOfTheData)
{
    std::array<std::byte, 4> data{std::byte{7}, std::byte{7}, std::byte{7}, std::byte{7}};
    const PrivateAnswer answer =
        ReadPrivateAnswer(AnsweredWith(Bytes({0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 2, 5, 5, 5})), data);
    EXPECT_EQ(answer.bytesReturned, 1U);
    EXPECT_THAT(data, ElementsAreArray(Bytes({2, 7, 7, 7})));
}

TEST(PrivateAnswer, LengthBeyondTheDataCopiesNoMoreThanThereIs)
{
    std::array<std::byte, 2> data{};
    const PrivateAnswer answer =
        ReadPrivateAnswer(AnsweredWith(Bytes({0, 0, 0, 0, 0, 0, 0, 0, 255, 255, 255, 255, 2, 5})), data);
    EXPECT_EQ(answer.status, 0U);
    EXPECT_EQ(answer.bytesReturned, 2U);
    EXPECT_THAT(data, ElementsAreArray(Bytes({2, 5})));
}

TEST(PrivateAnswer, NotSupportedIsError50)
{
    std::array<std::byte, 4> data{};
    const PrivateAnswer answer =
        ReadPrivateAnswer(AnsweredWith(Bytes({0, 0, 0, 0, 0xBB, 0, 0, 0xC0, 0, 0, 0, 0, 0, 0, 0, 0})), data);
    EXPECT_EQ(answer.status, 0xC00000BB);
    EXPECT_EQ(answer.error, 50U);
    EXPECT_EQ(answer.bytesReturned, 0U);
    EXPECT_EQ(answer.bytesNeeded, 0U);
}

TEST(PrivateAnswer, AnyOtherStatusIsError31AndReturnsTheBytesNeeded)
{
    std::array<std::byte, 4> data{};
    const PrivateAnswer answer =
        ReadPrivateAnswer(AnsweredWith(Bytes({0, 0, 0, 0, 0x23, 0, 0, 0xC0, 16, 0, 0, 0, 1, 2, 3, 4})), data);
    EXPECT_EQ(answer.status, 0xC0000023);
    EXPECT_EQ(answer.error, 31U);
    EXPECT_EQ(answer.bytesNeeded, 16U);
    EXPECT_EQ(answer.bytesReturned, 4U) << "the data is returned whatever the status is";
    EXPECT_THAT(data, ElementsAreArray(Bytes({1, 2, 3, 4})));
}

TEST(PrivateAnswer, RequestThatNeverGotAnAnswerIsUnsuccessful)
{
    EXPECT_EQ(PrivateAnswer().status, 0xC0000001);
}

TEST(IScsiBootMode, OnlyTwoAndThreeBootOverIScsi)
{
    EXPECT_TRUE(IsIScsiBootMode(2));
    EXPECT_TRUE(IsIScsiBootMode(3));
    for (const uint32_t other : {0U, 1U, 4U, 5U, 0x02000000U, 0xFFFFFFFFU}) {
        EXPECT_FALSE(IsIScsiBootMode(other)) << other;
    }
}
