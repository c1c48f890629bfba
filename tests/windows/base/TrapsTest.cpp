#include <gtest/gtest.h>
#include <windows.h>

#include <string>

#include "Handles.h"
#include "TestFiles.h"

namespace {
constexpr DWORD kTrapped = 0xC000001D; // STATUS_ILLEGAL_INSTRUCTION
constexpr DWORD kAborted = 3;
constexpr DWORD kCameToItsEnd = 7;

DWORD ExitCodeOfProbe(const std::string& fault)
{
    std::string command = "\"" + TestFile("trap_probe.exe") + "\" " + fault;
    STARTUPINFOA startup{};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION process{};
    if (CreateProcessA(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &process) ==
        FALSE) {
        return STILL_ACTIVE;
    }
    const UniqueHandle processOwner(process.hProcess);
    const UniqueHandle threadOwner(process.hThread);
    WaitForSingleObject(process.hProcess, INFINITE);
    DWORD exitCode = STILL_ACTIVE;
    GetExitCodeProcess(process.hProcess, &exitCode);
    return exitCode;
}
} // namespace

TEST(Traps, UndefinedBehaviourEndsATestProgramAtTheSpot)
{
    EXPECT_EQ(kTrapped, ExitCodeOfProbe("overflow"));
}

TEST(Traps, WrongUseOfTheLibraryEndsATestProgramAtTheSpot)
{
    EXPECT_EQ(kAborted, ExitCodeOfProbe("index"));
}

TEST(Traps, WhatIsWellDefinedComesToItsEnd)
{
    EXPECT_EQ(kCameToItsEnd, ExitCodeOfProbe("none"));
}
