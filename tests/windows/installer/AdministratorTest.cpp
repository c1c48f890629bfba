#include "Administrator.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>

#include <cstddef>
#include <span>
#include <vector>

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

namespace {
decltype(&OpenThreadToken) platformOpenThreadToken = nullptr;

struct TokenRequest
{
    HANDLE thread = nullptr;
    DWORD access = 0;
    BOOL asSelf = TRUE;
};
std::vector<TokenRequest> tokenRequests;

BOOL WINAPI NoteThreadToken(HANDLE thread, DWORD access, BOOL asSelf, PHANDLE token)
{
    tokenRequests.push_back({thread, access, asSelf});
    return platformOpenThreadToken(thread, access, asSelf, token);
}

std::vector<std::byte> AdministratorsSid()
{
    std::vector<std::byte> sid(SECURITY_MAX_SID_SIZE);
    auto bytes = static_cast<DWORD>(sid.size());
    EXPECT_NE(FALSE, CreateWellKnownSid(WinBuiltinAdministratorsSid, nullptr, sid.data(), &bytes));
    return sid;
}

/// @return the attributes that the administrators' group has in a token, 0 when it is not there.
DWORD AttributesOfAdministrators(HANDLE token)
{
    DWORD bytes = 0;
    GetTokenInformation(token, TokenGroups, nullptr, 0, &bytes);
    std::vector<std::byte> buffer(bytes);
    GetTokenInformation(token, TokenGroups, buffer.data(), bytes, &bytes);
    const auto& groups = *reinterpret_cast<const TOKEN_GROUPS*>(buffer.data());
    std::vector<std::byte> administrators = AdministratorsSid();
    for (const SID_AND_ATTRIBUTES& group : std::span(groups.Groups, groups.GroupCount)) {
        if (EqualSid(group.Sid, administrators.data()) != FALSE) {
            return group.Attributes;
        }
    }
    return 0;
}

/// Puts a copy of the process's token on the calling thread in which the administrators' group only denies, as users
/// have it whom the system asks before it lets them administrate.
class DenyOnlyToken
{
public:
    DenyOnlyToken()
    {
        HANDLE own = nullptr;
        OpenProcessToken(GetCurrentProcess(), TOKEN_DUPLICATE | TOKEN_QUERY, &own);
        const UniqueHandle process(own);
        std::vector<std::byte> sid = AdministratorsSid();
        SID_AND_ATTRIBUTES disabled{.Sid = sid.data(), .Attributes = 0};
        HANDLE restricted = nullptr;
        CreateRestrictedToken(own, 0, 1, &disabled, 0, nullptr, 0, nullptr, &restricted);
        const UniqueHandle primary(restricted);
        HANDLE copy = nullptr;
        DuplicateTokenEx(restricted, TOKEN_QUERY | TOKEN_IMPERSONATE, nullptr, SecurityImpersonation,
                         TokenImpersonation, &copy);
        m_token.reset(copy);
        m_set = SetThreadToken(nullptr, copy) != FALSE;
    }
    ~DenyOnlyToken() { RevertToSelf(); }
    DenyOnlyToken(const DenyOnlyToken&) = delete;
    DenyOnlyToken& operator=(const DenyOnlyToken&) = delete;

    [[nodiscard]] bool IsSet() const { return m_set; }
    [[nodiscard]] HANDLE Get() const { return m_token.get(); }

private:
    UniqueHandle m_token;
    bool m_set = false;
};
} // namespace

TEST(Administrator, GroupThatOnlyDeniesCountsToo)
{
    const DenyOnlyToken token;
    ASSERT_TRUE(token.IsSet());
    const DWORD attributes = AttributesOfAdministrators(token.Get());
    ASSERT_NE(0U, attributes & SE_GROUP_USE_FOR_DENY_ONLY);
    ASSERT_EQ(0U, attributes & SE_GROUP_ENABLED);
    EXPECT_EQ(1, RunningAsAdministrator());
}

TEST(Administrator, ThreadTokenIsOpenedForQueriesAndNotAsTheProcessItself)
{
    tokenRequests.clear();
    const ImportOverride note("OpenThreadToken",
                              InPlaceOf(platformOpenThreadToken, &OpenThreadToken, &NoteThreadToken));
    EXPECT_EQ(1, RunningAsAdministrator());
    ASSERT_EQ(1U, tokenRequests.size());
    EXPECT_EQ(GetCurrentThread(), tokenRequests[0].thread);
    EXPECT_EQ(DWORD{TOKEN_QUERY}, tokenRequests[0].access);
    EXPECT_EQ(FALSE, tokenRequests[0].asSelf);
}
