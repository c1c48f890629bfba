#include "ChildProcess.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>
// tlhelp32.h needs windows.h first.
#include <tlhelp32.h>

#include "Handles.h"
#include "ScratchDirectory.h"
#include "TestFiles.h"

using testing::HasSubstr;

namespace {
/// @return the number of programs that this one has started and that still run.
int RunningChildren()
{
    const UniqueHandle processes(CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0));
    PROCESSENTRY32 process{};
    process.dwSize = sizeof(process);
    int children = 0;
    for (BOOL more = Process32First(processes.get(), &process); more != FALSE;
         more = Process32Next(processes.get(), &process)) {
        children += process.th32ParentProcessID == GetCurrentProcessId() ? 1 : 0;
    }
    return children;
}
} // namespace

TEST(ChildProcess, TellsTheExitCodeOfAProgramThatEnded)
{
    const ScratchDirectory scratch;
    const std::string program = scratch.At("a program.exe");
    CopyFileTo(TestFile("command_line_recorder.exe"), program);

    const ProgramEnd end = RunAndWait("\"" + program + "\" /s /m", scratch.Path(), 60000);

    EXPECT_EQ(end.kind, ProgramEnd::Kind::Ended);
    EXPECT_EQ(end.code, 7U);
    const std::string journal = ReadFileBytes(program + ".journal.txt");
    EXPECT_THAT(journal, HasSubstr("command line: \"" + program + "\" /s /m\n"));
    EXPECT_THAT(journal, HasSubstr("directory: " + scratch.Path() + "\n"));
}

TEST(ChildProcess, AProgramThatIsNotThereIsNotStarted)
{
    const ScratchDirectory scratch;
    const ProgramEnd end = RunAndWait("\"" + scratch.At("none.exe") + "\"", {}, 60000);
    EXPECT_EQ(end.kind, ProgramEnd::Kind::NotStarted);
    EXPECT_EQ(end.code, DWORD{ERROR_FILE_NOT_FOUND});
}

TEST(ChildProcess, AProgramThatTakesTooLongIsEnded)
{
    // Waits for a minute, far longer than it is given.
    const DWORD begin = GetTickCount();
    const ProgramEnd end = RunAndWait("ping -n 61 127.0.0.1", {}, 500);
    EXPECT_EQ(end.kind, ProgramEnd::Kind::StoppedForTime);
    EXPECT_LT(GetTickCount() - begin, DWORD{30000});
    EXPECT_EQ(RunningChildren(), 0);
}
