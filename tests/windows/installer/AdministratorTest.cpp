#include "Administrator.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>

#include "DebugOutput.h"
#include "Handles.h"

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
