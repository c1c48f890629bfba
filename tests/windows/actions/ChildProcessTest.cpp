#include "ChildProcess.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>

#include "ScratchDirectory.h"
#include "TestFiles.h"

using testing::HasSubstr;

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
}
