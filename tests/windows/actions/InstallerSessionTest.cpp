#include "InstallerSession.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <msiquery.h>

#include "HeldProgram.h"
#include "ScratchDirectory.h"
#include "TestFiles.h"
#include "WaitProgress.h"

using testing::ElementsAre;
using testing::HasSubstr;

namespace {
/// What the engine was sent; it answers as it does after the user has cancelled, once it was sent `cancelAfter`
/// messages.
struct Engine
{
    std::vector<std::string> texts;
    std::vector<std::pair<int, int>> progress;
    size_t cancelAfter = SIZE_MAX;
};
Engine engine;

std::string Field(MSIHANDLE record, UINT field)
{
    std::string text(256, '\0');
    DWORD chars = static_cast<DWORD>(text.size());
    MsiRecordGetStringA(record, field, text.data(), &chars);
    return text.substr(0, chars);
}

int WINAPI TakeMessage(MSIHANDLE, INSTALLMESSAGE kind, MSIHANDLE record)
{
    if (kind == INSTALLMESSAGE_PROGRESS) {
        engine.progress.emplace_back(MsiRecordGetInteger(record, 1), MsiRecordGetInteger(record, 2));
    } else if (kind == INSTALLMESSAGE_ACTIONDATA) {
        engine.texts.push_back(Field(record, 1));
    }
    return engine.texts.size() + engine.progress.size() > engine.cancelAfter ? IDCANCEL : IDOK;
}

class InstallerSessionWait : public testing::Test
{
protected:
    void SetUp() override { engine = {}; }
};

InstallerSession SessionWithEngine()
{
    InstallerFunctions functions;
    functions.processMessage = &TakeMessage;
    return InstallerSession(0, std::move(functions));
}

ProgramEnd RunReported(const ProgramStart& start, std::uint32_t limitSeconds)
{
    return SessionWithEngine().RunAndReport(start, limitSeconds);
}
} // namespace

TEST_F(InstallerSessionWait, TheProgressBarGrowsByTheTicksOfOneWait)
{
    SessionWithEngine().AnnounceWait();
    EXPECT_THAT(engine.progress, ElementsAre(std::pair(3, static_cast<int>(kWaitTicks))));
}

TEST_F(InstallerSessionWait, AProgramThatEndsFillsTheProgressBar)
{
    const ScratchDirectory scratch;
    const std::string program = scratch.At("program.exe");
    CopyFileTo(TestFile("command_line_recorder.exe"), program);

    EXPECT_EQ(RunReported({program, "", scratch.Path()}, 300).kind, ProgramEnd::Kind::Ended);

    int sum = 0;
    for (const auto& [kind, ticks] : engine.progress) {
        EXPECT_EQ(kind, 2);
        sum += ticks;
    }
    EXPECT_EQ(sum, static_cast<int>(kWaitTicks));
}

TEST_F(InstallerSessionWait, EverySliceReportsTheTimeAndMovesTheBar)
{
    const HeldProgram program;

    EXPECT_EQ(RunReported(program.Start(), 2).kind, ProgramEnd::Kind::StillRunning);

    ASSERT_FALSE(engine.texts.empty());
    EXPECT_EQ(engine.texts.size(), engine.progress.size());
    EXPECT_THAT(engine.texts.front(), HasSubstr(" of at most 2 seconds"));
    EXPECT_GT(engine.progress.front().second, 0);
}

TEST_F(InstallerSessionWait, CancelIsSeenInEitherMessage)
{
    for (const size_t message : {0U, 1U}) {
        const HeldProgram program;
        engine = {};
        engine.cancelAfter = message;
        EXPECT_EQ(RunReported(program.Start(), 300).kind, ProgramEnd::Kind::Cancelled) << message;
        EXPECT_EQ(engine.progress.size(), message);
    }
}
