#include "Administrator.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>

#include "DebugOutput.h"
#include "Handles.h"
#include "ImportOverride.h"

using testing::ElementsAre;

namespace {
/// Puts a copy of the process's token on the calling thread for the life of the object.
class ThreadToken
{
public:
    explicit ThreadToken(SECURITY_IMPERSONATION_LEVEL level)
    {
        HANDLE own = nullptr;
        OpenProcessToken(GetCurrentProcess(), TOKEN_DUPLICATE | TOKEN_QUERY, &own);
        const UniqueHandle process(own);
        HANDLE copy = nullptr;
        DuplicateTokenEx(own, TOKEN_QUERY | TOKEN_IMPERSONATE, nullptr, level, TokenImpersonation, &copy);
        m_token.reset(copy);
        m_set = SetThreadToken(nullptr, copy) != FALSE;
    }
    ~ThreadToken() { RevertToSelf(); }
    ThreadToken(const ThreadToken&) = delete;
    ThreadToken& operator=(const ThreadToken&) = delete;
    [[nodiscard]] bool IsSet() const { return m_set; }

private:
    UniqueHandle m_token;
    bool m_set = false;
};

BOOL WINAPI KnowNoTokens(HANDLE, DWORD, BOOL, PHANDLE)
{
    SetLastError(ERROR_CALL_NOT_IMPLEMENTED);
    return FALSE;
}

BOOL WINAPI RefuseThreadToken(HANDLE, DWORD, BOOL, PHANDLE)
{
    SetLastError(ERROR_ACCESS_DENIED);
    return FALSE;
}

BOOL WINAPI RefuseProcessToken(HANDLE, DWORD, PHANDLE)
{
    SetLastError(ERROR_ACCESS_DENIED);
    return FALSE;
}

BOOL WINAPI RefuseInformation(HANDLE, TOKEN_INFORMATION_CLASS, LPVOID, DWORD, PDWORD)
{
    SetLastError(ERROR_ACCESS_DENIED);
    return FALSE;
}

BOOL WINAPI GiveOnlyTheSize(HANDLE, TOKEN_INFORMATION_CLASS, LPVOID buffer, DWORD, PDWORD needed)
{
    *needed = 512;
    SetLastError(buffer == nullptr ? ERROR_INSUFFICIENT_BUFFER : ERROR_ACCESS_DENIED);
    return FALSE;
}

BOOL WINAPI RefuseSid(PSID_IDENTIFIER_AUTHORITY, BYTE, DWORD, DWORD, DWORD, DWORD, DWORD, DWORD, DWORD, DWORD, PSID*)
{
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return FALSE;
}

struct RefusedStep
{
    const char* function;
    void* refusal;
    const char* what;
};
} // namespace

TEST(Administrator, ProcessTokenIsAskedWhenTheThreadHasNone)
{
    TraceCapture trace;
    EXPECT_EQ(1, RunningAsAdministrator());
    EXPECT_THAT(trace.Messages(), ElementsAre("Entering - RunningAsAdministrator"));
}

TEST(Administrator, ThreadTokenIsAskedFirst)
{
    const ThreadToken token(SecurityImpersonation);
    ASSERT_TRUE(token.IsSet());
    EXPECT_EQ(1, RunningAsAdministrator());
}

TEST(Administrator, ThreadTokenThatCannotBeOpenedMeansNoAdministrator)
{
    const ThreadToken token(SecurityAnonymous);
    ASSERT_TRUE(token.IsSet());
    EXPECT_EQ(0, RunningAsAdministrator());
}

TEST(Administrator, OnASystemWithoutSecurityEverybodyIsOne)
{
    const ImportOverride unknown("OpenThreadToken", reinterpret_cast<void*>(KnowNoTokens));
    const ImportOverride refused("OpenProcessToken", reinterpret_cast<void*>(RefuseProcessToken));
    EXPECT_EQ(1, RunningAsAdministrator());
}

TEST(Administrator, EachRefusedStepMeansNo)
{
    ASSERT_EQ(1, RunningAsAdministrator());
    for (const RefusedStep& step : {
             RefusedStep{"OpenThreadToken", reinterpret_cast<void*>(RefuseThreadToken), "the thread's token"},
             RefusedStep{"OpenProcessToken", reinterpret_cast<void*>(RefuseProcessToken), "the process's token"},
             RefusedStep{"GetTokenInformation", reinterpret_cast<void*>(RefuseInformation), "the groups' size"},
             RefusedStep{"GetTokenInformation", reinterpret_cast<void*>(GiveOnlyTheSize), "the groups"},
             RefusedStep{"AllocateAndInitializeSid", reinterpret_cast<void*>(RefuseSid), "the administrators' SID"},
         }) {
        const ImportOverride refused(step.function, step.refusal);
        EXPECT_EQ(0, RunningAsAdministrator()) << step.what;
    }
}
