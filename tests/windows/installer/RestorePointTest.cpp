#include "RestorePoint.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "DebugOutput.h"
#include "LangString.h"

using testing::ElementsAre;

namespace {
struct Call
{
    DWORD eventType;
    DWORD restorePointType;
    int64_t sequence;
};
std::vector<Call> calls;
BOOL answer = TRUE;
STATEMGRSTATUS answeredStatus{};

BOOL WINAPI RecordingRestorePoint(RESTOREPOINTINFOW* info, STATEMGRSTATUS* status)
{
    calls.push_back({info->dwEventType, info->dwRestorePtType, info->llSequenceNumber});
    *status = answeredStatus;
    return answer;
}

class RestorePoints : public testing::Test
{
protected:
    RestorePoints()
    {
        calls.clear();
        answer = TRUE;
        answeredStatus = {};
        setRestorePoint = RecordingRestorePoint;
    }
    ~RestorePoints() override { setRestorePoint = nullptr; }

    RESTOREPOINTINFOW m_record{};
    int64_t m_sequence = 99;
    TraceCapture m_trace;
    // Look-ups of the description trace a line of their own.
    static std::vector<std::string> WithoutLookUps(std::vector<std::string> messages)
    {
        std::erase(messages, "Entering - GetLanguageSpecificString");
        return messages;
    }
};
} // namespace

TEST_F(RestorePoints, BeginAndEndHandTheSequenceThrough)
{
    answeredStatus.llSequenceNumber = 41;
    EXPECT_EQ(1, BeginRestorePoint(m_record, m_sequence));
    EXPECT_EQ(41, m_sequence);
    EXPECT_EQ(TRUE, EndRestorePoint(m_record, m_sequence));
    ASSERT_EQ(2U, calls.size());
    EXPECT_EQ(102U, calls[0].eventType);
    EXPECT_EQ(10U, calls[0].restorePointType);
    EXPECT_EQ(0, calls[0].sequence);
    EXPECT_EQ(103U, calls[1].eventType);
    EXPECT_EQ(10U, calls[1].restorePointType);
    EXPECT_EQ(41, calls[1].sequence);
    EXPECT_THAT(WithoutLookUps(m_trace.Messages()),
                ElementsAre("Entering BeginRestorePoint", "Successfully started the system restore point",
                            "Exiting BeginRestorePoint", "Entering EndRestorePoint", "Exiting EndRestorePoint"));
}

TEST_F(RestorePoints, RefusedRestorePointIsTraced)
{
    answer = FALSE;
    EXPECT_EQ(0, BeginRestorePoint(m_record, m_sequence));
    EXPECT_EQ(0, m_sequence);
    EXPECT_THAT(WithoutLookUps(m_trace.Messages()),
                ElementsAre("Entering BeginRestorePoint", "call to restore point function failed!",
                            "Exiting BeginRestorePoint"));
}

TEST_F(RestorePoints, DisabledServiceIsNamed)
{
    answer = FALSE;
    answeredStatus.nStatus = 1058;
    EXPECT_EQ(0, BeginRestorePoint(m_record, m_sequence));
    EXPECT_THAT(WithoutLookUps(m_trace.Messages()),
                ElementsAre("Entering BeginRestorePoint", "call to restore point function failed!",
                            "The service does not exist", "Exiting BeginRestorePoint"));
}

TEST_F(RestorePoints, FailedEndIsTraced)
{
    answer = FALSE;
    EXPECT_EQ(0, EndRestorePoint(m_record, 5));
    EXPECT_THAT(m_trace.Messages(),
                ElementsAre("Entering EndRestorePoint", "Call to restore point (END_NESTED_SYSTEM_CHANGE) failed!",
                            "Exiting EndRestorePoint"));
}

TEST_F(RestorePoints, NothingIsCalledOnSystemsWithoutTheFunction)
{
    setRestorePoint = nullptr;
    EXPECT_EQ(0, BeginRestorePoint(m_record, m_sequence));
    EXPECT_EQ(0, m_sequence);
    EXPECT_EQ(0, EndRestorePoint(m_record, 5));
    EXPECT_TRUE(calls.empty());
    EXPECT_THAT(m_trace.Messages(),
                ElementsAre("Entering BeginRestorePoint", "Exiting BeginRestorePoint", "Entering EndRestorePoint"));
}

TEST_F(RestorePoints, SequenceZeroIsNotEnded)
{
    EXPECT_EQ(0, EndRestorePoint(m_record, 0));
    EXPECT_TRUE(calls.empty());
}

TEST_F(RestorePoints, DescriptionIsTheEightBitTextByteForByte)
{
    runLanguageId = 1033;
    resourceModule = GetModuleHandleA(nullptr);
    BeginRestorePoint(m_record, m_sequence);
    resourceModule = nullptr;
    std::vector<char> expected(512);
    std::strcpy(expected.data(), "restore point text");
    EXPECT_EQ(0, std::memcmp(expected.data(), m_record.szDescription, expected.size()));
}

TEST_F(RestorePoints, ALongDescriptionEndsAt255Bytes)
{
    runLanguageId = 1031; // its text has 300 characters
    resourceModule = GetModuleHandleA(nullptr);
    BeginRestorePoint(m_record, m_sequence);
    resourceModule = nullptr;
    runLanguageId = 1033;
    std::vector<char> expected(512);
    for (size_t index = 0; index < 255; ++index) {
        expected[index] = static_cast<char>('0' + index % 10);
    }
    EXPECT_EQ(0, std::memcmp(expected.data(), m_record.szDescription, expected.size()));
}
