#include "WmiQuery.h"

#include <windows.h>
// objbase.h needs windows.h first.
#include <gtest/gtest.h>
#include <objbase.h>

namespace {
constexpr wchar_t kNameSpace[] = LR"(root\cimv2)";
constexpr wchar_t kQuery[] = L"SELECT * FROM Win32_OperatingSystem";

/// COM on this thread for the life of the object.
class Com
{
public:
    explicit Com(DWORD mode) : m_status(CoInitializeEx(nullptr, mode)) {}
    ~Com()
    {
        if (SUCCEEDED(m_status)) {
            CoUninitialize();
        }
    }
    Com(const Com&) = delete;
    Com& operator=(const Com&) = delete;
    [[nodiscard]] HRESULT Status() const { return m_status; }

private:
    HRESULT m_status;
};
} // namespace

TEST(WmiQuery, ReportsThatThereAreRows)
{
    EXPECT_EQ(AskWmi(kNameSpace, kQuery), WmiAnswer::Rows);
}

TEST(WmiQuery, ReportsThatThereAreNone)
{
    EXPECT_EQ(AskWmi(kNameSpace, L"SELECT * FROM Win32_OperatingSystem WHERE Name = 'no such system'"),
              WmiAnswer::NoRows);
}

TEST(WmiQuery, ANameSpaceThatDoesNotExistIsAFailure)
{
    EXPECT_EQ(AskWmi(LR"(root\nosuchnamespace)", kQuery), WmiAnswer::Failed);
}

TEST(WmiQuery, AnInvalidQueryIsAFailure)
{
    EXPECT_EQ(AskWmi(kNameSpace, L"what is installed?"), WmiAnswer::Failed);
}

TEST(WmiQuery, NoNameSpaceOrNoQueryIsAFailure)
{
    EXPECT_EQ(AskWmi(nullptr, kQuery), WmiAnswer::Failed);
    EXPECT_EQ(AskWmi(kNameSpace, nullptr), WmiAnswer::Failed);
    EXPECT_EQ(AskWmi(L"", L""), WmiAnswer::Failed);
}

TEST(WmiQuery, LeavesComUninitialisedOnAThreadWithoutIt)
{
    ASSERT_EQ(AskWmi(kNameSpace, kQuery), WmiAnswer::Rows);
    // S_FALSE or a refusal would mean that COM was still there.
    EXPECT_EQ(Com(COINIT_APARTMENTTHREADED).Status(), S_OK);
}

TEST(WmiQuery, AnswersOnAThreadThatHasComInEitherMode)
{
    {
        const Com com(COINIT_APARTMENTTHREADED);
        EXPECT_EQ(AskWmi(kNameSpace, kQuery), WmiAnswer::Rows);
        EXPECT_EQ(Com(COINIT_APARTMENTTHREADED).Status(), S_FALSE);
    }
    const Com com(COINIT_MULTITHREADED);
    EXPECT_EQ(AskWmi(kNameSpace, kQuery), WmiAnswer::Rows);
    EXPECT_EQ(Com(COINIT_MULTITHREADED).Status(), S_FALSE);
}
