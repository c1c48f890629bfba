#include "ChildProcess.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>

#include "HeldProgram.h"
#include "ScratchDirectory.h"
#include "TestFiles.h"

using testing::ElementsAre;
using testing::Ge;
using testing::HasSubstr;

namespace {
// Only guards against hanging.
constexpr std::uint32_t kLongEnough = 300;

bool Continue(std::uint32_t)
{
    return true;
}
} // namespace

TEST(ChildProcess, ReturnsTheExitCodeOfAProgramThatEnded)
{
    const ScratchDirectory scratch;
    const std::string program = scratch.At("a program.exe");
    CopyFileTo(TestFile("command_line_recorder.exe"), program);

    const ProgramEnd end = RunAndWait({program, "/s /m", scratch.Path()}, kLongEnough, Continue);

    EXPECT_EQ(end.kind, ProgramEnd::Kind::Ended);
    EXPECT_EQ(end.code, 7U);
    const std::string journal = ReadFileBytes(program + ".journal.txt");
    EXPECT_THAT(journal, HasSubstr("command line: \"" + program + "\" /s /m\n"));
    EXPECT_THAT(journal, HasSubstr("directory: " + scratch.Path() + "\n"));
}

TEST(ChildProcess, AMissingProgramIsNotStarted)
{
    const ScratchDirectory scratch;
    const ProgramEnd end = RunAndWait({scratch.At("none.exe"), "", scratch.Path()}, kLongEnough, Continue);
    EXPECT_EQ(end.kind, ProgramEnd::Kind::NotStarted);
    EXPECT_EQ(end.code, DWORD{ERROR_FILE_NOT_FOUND});
}

TEST(ChildProcess, NoDirectoryIsSearchedForAProgram)
{
    // The command interpreter would be found in the system directory by its name.
    const ScratchDirectory scratch;
    const ProgramEnd end = RunAndWait({"cmd.exe", "/c exit 3", scratch.Path()}, kLongEnough, Continue);
    EXPECT_EQ(end.kind, ProgramEnd::Kind::NotStarted);
}

TEST(ChildProcess, AProgramThatTakesTooLongIsLeftRunning)
{
    const HeldProgram program;

    const ProgramEnd end = RunAndWait(program.Start(), 1, Continue);

    EXPECT_EQ(end.kind, ProgramEnd::Kind::StillRunning);
    EXPECT_EQ(HeldProgram::RunningChildren().size(), 1U);
}

TEST(ChildProcess, TheObserverIsCalledInSlicesUntilItCancelsAndTheProgramIsLeftRunning)
{
    const HeldProgram program;
    std::vector<std::uint32_t> seconds;

    const ProgramEnd end = RunAndWait(program.Start(), kLongEnough, [&](std::uint32_t elapsed) {
        seconds.push_back(elapsed);
        return seconds.size() < 3;
    });

    EXPECT_EQ(end.kind, ProgramEnd::Kind::Cancelled);
    EXPECT_THAT(seconds, ElementsAre(Ge(1U), Ge(2U), Ge(3U)));
    EXPECT_EQ(HeldProgram::RunningChildren().size(), 1U);
}
