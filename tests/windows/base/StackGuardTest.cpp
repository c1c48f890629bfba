#include <gtest/gtest.h>
#include <windows.h>

#include <stdexcept>
#include <string>

#include "CallCount.h"
#include "Handles.h"
#include "TestFiles.h"

namespace {
/// @return the exit code of the program that overruns its stack when it is given an argument.
DWORD ExitCodeWith(const std::string& argument)
{
    std::string commandLine = "\"" + TestFile("stack_overrun.exe") + "\" " + argument;
    STARTUPINFOA startup{};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION started{};
    if (CreateProcessA(nullptr, commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &started) ==
        FALSE) {
        throw std::runtime_error("cannot start " + commandLine);
    }
    const UniqueHandle process(started.hProcess);
    const UniqueHandle thread(started.hThread);
    constexpr DWORD kLimitMilliseconds = 30000;
    EXPECT_EQ(WaitForSingleObject(process.get(), kLimitMilliseconds), WAIT_OBJECT_0);
    DWORD exitCode = 0;
    GetExitCodeProcess(process.get(), &exitCode);
    return exitCode;
}
} // namespace

TEST(StackGuard, ProgramWhoseStackFrameIsOverwrittenEndsAtOnce)
{
    EXPECT_EQ(ExitCodeWith(std::string(64, 'x')), 0xC0000409U);
}

TEST(StackGuard, ValueIsAnotherOneInEveryProcess)
{
    EXPECT_NE(ExitCodeWith(""), ExitCodeWith(""));
}

TEST(StackGuard, StartAsksNoCryptographicProvider)
{
    EXPECT_THROW(CallCount("CryptAcquireContextA"), std::runtime_error) << "nothing here imports it";
}
