#include "Restart.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>

#include "DebugOutput.h"
#include "ImportOverride.h"

using testing::ElementsAre;

namespace {
struct AskedOfTheSystem
{
    unsigned restarts = 0;
    UINT flags = 0;
    DWORD reason = 1;
    int answer = TRUE;
    unsigned adjustments = 0;
    HANDLE token = nullptr;
    TOKEN_PRIVILEGES privileges{};
};
AskedOfTheSystem asked;

BOOL WINAPI RecordRestart(UINT flags, DWORD reason)
{
    ++asked.restarts;
    asked.flags = flags;
    asked.reason = reason;
    return asked.answer;
}

BOOL WINAPI RecordPrivileges(HANDLE token, BOOL, PTOKEN_PRIVILEGES privileges, DWORD, PTOKEN_PRIVILEGES, PDWORD)
{
    ++asked.adjustments;
    asked.token = token;
    asked.privileges = *privileges;
    return TRUE;
}

BOOL WINAPI RefuseToken(HANDLE, DWORD, PHANDLE)
{
    return FALSE;
}

/// No restart that a test asks for reaches the system.
class Restart : public testing::Test
{
protected:
    Restart() { asked = {}; }

private:
    const ImportOverride m_restart{"ExitWindowsEx", reinterpret_cast<void*>(RecordRestart)};
    const ImportOverride m_privileges{"AdjustTokenPrivileges", reinterpret_cast<void*>(RecordPrivileges)};
};
} // namespace

TEST_F(Restart, AsksForARebootWithItsPrivilegeAndReturnsTheAnswer)
{
    LUID shutdown{};
    ASSERT_TRUE(LookupPrivilegeValueA(nullptr, "SeShutdownPrivilege", &shutdown));
    for (const int answer : {1, 0, 7}) {
        asked = {};
        asked.answer = answer;
        TraceCapture trace;
        EXPECT_EQ(answer, RestartMachine());
        EXPECT_THAT(trace.Messages(), ElementsAre("Entering - RestartMachine"));
        EXPECT_EQ(1U, asked.restarts);
        EXPECT_EQ(2U, asked.flags); // EWX_REBOOT
        EXPECT_EQ(0U, asked.reason);
        EXPECT_EQ(1U, asked.adjustments);
        EXPECT_NE(nullptr, asked.token);
        EXPECT_EQ(1U, asked.privileges.PrivilegeCount);
        const LUID_AND_ATTRIBUTES& privilege = asked.privileges.Privileges[0];
        EXPECT_EQ(shutdown.LowPart, privilege.Luid.LowPart);
        EXPECT_EQ(shutdown.HighPart, privilege.Luid.HighPart);
        EXPECT_EQ(DWORD{SE_PRIVILEGE_ENABLED}, privilege.Attributes);
    }
}

TEST_F(Restart, GoesOnWithoutAToken)
{
    const ImportOverride refused("OpenProcessToken", reinterpret_cast<void*>(RefuseToken));
    EXPECT_EQ(TRUE, RestartMachine());
    EXPECT_EQ(nullptr, asked.token);
    EXPECT_EQ(1U, asked.restarts);
    EXPECT_EQ(2U, asked.flags);
    EXPECT_EQ(0U, asked.reason);
}
