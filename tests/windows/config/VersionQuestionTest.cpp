// The two questions by which a process to which the system reports 6.0 recognises a later one.

#include <gmock/gmock.h>
#include <windows.h>

#include <cstring>

#include "ImportOverride.h"
#include "OSVersion.h"

namespace {
struct Question
{
    OSVERSIONINFOEXA record{};
    DWORD types = 0;
    DWORDLONG conditions = 0;
};
std::vector<Question> questions;
BOOL answer = FALSE;

BOOL WINAPI NoteQuestion(LPOSVERSIONINFOEXA record, DWORD types, DWORDLONG conditions)
{
    questions.push_back({*record, types, conditions});
    return answer;
}

class VersionQuestion : public testing::Test
{
protected:
    VersionQuestion() { questions.clear(); }

    static void ExpectOneQuestion(const OSVERSIONINFOEXA& record, DWORD types, DWORDLONG conditions)
    {
        ASSERT_EQ(questions.size(), 1U);
        EXPECT_EQ(std::memcmp(&questions[0].record, &record, sizeof(record)), 0);
        EXPECT_EQ(questions[0].types, types);
        EXPECT_EQ(questions[0].conditions, conditions);
    }

private:
    const ImportOverride m_note{"VerifyVersionInfoA", reinterpret_cast<void*>(NoteQuestion)};
};

DWORDLONG Conditions(DWORD types, BYTE condition)
{
    DWORDLONG conditions = 0;
    for (const DWORD type : {DWORD{VER_MAJORVERSION}, DWORD{VER_MINORVERSION}, DWORD{VER_PRODUCT_TYPE}}) {
        if ((types & type) != 0) {
            conditions = VerSetConditionMask(conditions, type, condition);
        }
    }
    return conditions;
}
} // namespace

TEST_F(VersionQuestion, Is61AsksForEqualMajorAndMinorNumbersInARecordOf156Bytes)
{
    OSVERSIONINFOEXA expected{};
    expected.dwOSVersionInfoSize = 156;
    expected.dwMajorVersion = 6;
    expected.dwMinorVersion = 1;
    constexpr DWORD kTypes = VER_MAJORVERSION | VER_MINORVERSION;
    for (const BOOL yes : {TRUE, FALSE}) {
        questions.clear();
        answer = yes;
        EXPECT_EQ(PlatformVerifier().IsSixOne(), yes != FALSE);
        ExpectOneQuestion(expected, kTypes, Conditions(kTypes, VER_EQUAL));
    }
}

TEST_F(VersionQuestion, Is62OrLaterAsksForNoSmallerNumbersAndProductTypeInARecordOf156Bytes)
{
    OSVERSIONINFOEXA expected{};
    expected.dwOSVersionInfoSize = 156;
    expected.dwMajorVersion = 6;
    expected.dwMinorVersion = 2;
    expected.wProductType = 1;
    constexpr DWORD kTypes = VER_MAJORVERSION | VER_MINORVERSION | VER_PRODUCT_TYPE;
    for (const BOOL yes : {TRUE, FALSE}) {
        questions.clear();
        answer = yes;
        EXPECT_EQ(PlatformVerifier().IsSixTwoOrLater(), yes != FALSE);
        ExpectOneQuestion(expected, kTypes, Conditions(kTypes, VER_GREATER_EQUAL));
    }
}
