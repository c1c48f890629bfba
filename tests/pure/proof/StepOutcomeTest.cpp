#include "StepOutcome.h"

#include <gmock/gmock.h>

using testing::HasSubstr;

namespace {
const Step kProgram{.name = "Program", .limitSeconds = 60, .judgedBy = JudgedBy::Results, .command = "a.exe"};
const Step kCommand{.name = "Command", .limitSeconds = 60, .judgedBy = JudgedBy::ExitCode, .command = "b.exe"};

StepEnd EndedWith(uint32_t exitCode, bool wroteResults)
{
    return {.started = true,
            .error = 0,
            .inTime = true,
            .exitCode = exitCode,
            .wroteResults = wroteResults,
            .lastCase = ""};
}

std::string ReportOf(const Step& step, const StepEnd& end)
{
    return ReportBesideResults(step, end, OutcomeOf(step, end, false)).value_or("none");
}
} // namespace

TEST(StepOutcome, AProgramWithResultsEnds)
{
    for (const uint32_t exitCode : {0U, 1U}) {
        EXPECT_EQ(OutcomeOf(kProgram, EndedWith(exitCode, true), false), StepOutcome::Ended);
        EXPECT_EQ(ReportOf(kProgram, EndedWith(exitCode, true)), "none");
    }
}

TEST(StepOutcome, AProgramWithoutResultsCrashedWhateverItsExitCode)
{
    for (const uint32_t exitCode : {0U, 1U, 0xC0000005U}) {
        EXPECT_EQ(OutcomeOf(kProgram, EndedWith(exitCode, false), false), StepOutcome::Crashed);
    }
    StepEnd end = EndedWith(0xC0000005, false);
    end.lastCase = "Suite.Case";
    EXPECT_THAT(ReportOf(kProgram, end),
                HasSubstr("crashed: ended with exit code 0xC0000005; the last test was Suite.Case"));
}

TEST(StepOutcome, AProgramThatCrashesAfterItsResultsHasCrashed)
{
    EXPECT_EQ(OutcomeOf(kProgram, EndedWith(0xC0000005, true), false), StepOutcome::Crashed);
    EXPECT_THAT(ReportOf(kProgram, EndedWith(0xC0000005, true)), HasSubstr("0xC0000005"));
}

TEST(StepOutcome, AProgramThatDoesNotRunOnSuchAMachineRefuses)
{
    EXPECT_EQ(OutcomeOf(kProgram, EndedWith(4, false), false), StepOutcome::Refused);
    EXPECT_EQ(OutcomeOf(kProgram, EndedWith(4, true), false), StepOutcome::Crashed);
    EXPECT_THAT(ReportOf(kProgram, EndedWith(4, false)), HasSubstr("refused to run on this machine: see Program.log"));
}

TEST(StepOutcome, AStepWithoutEndInItsTimeHungWhateverItWrote)
{
    StepEnd end = EndedWith(0, true);
    end.inTime = false;
    EXPECT_EQ(OutcomeOf(kProgram, end, false), StepOutcome::Hung);
    EXPECT_EQ(OutcomeOf(kCommand, end, false), StepOutcome::Hung);
    EXPECT_THAT(ReportOf(kProgram, end), HasSubstr("hung: ended after 60 seconds"));
    EXPECT_THAT(ReportOf(kCommand, end), HasSubstr("hung: ended after 60 seconds"));
}

TEST(StepOutcome, AProgramThatCannotBeStartedSaysWhy)
{
    const StepEnd end{
        .started = false, .error = 2, .inTime = true, .exitCode = 0, .wroteResults = false, .lastCase = ""};
    EXPECT_EQ(OutcomeOf(kProgram, end, false), StepOutcome::NotStarted);
    EXPECT_THAT(ReportOf(kCommand, end), HasSubstr("could not be started: error 2"));
}

TEST(StepOutcome, AStepIsRestartedOnce)
{
    EXPECT_EQ(OutcomeOf(kProgram, EndedWith(3010, true), false), StepOutcome::WantsRestart);
    EXPECT_EQ(OutcomeOf(kProgram, EndedWith(3010, false), false), StepOutcome::WantsRestart);
    EXPECT_EQ(ReportOf(kProgram, EndedWith(3010, true)), "none");
    EXPECT_EQ(OutcomeOf(kProgram, EndedWith(3010, true), true), StepOutcome::Crashed);
}

TEST(StepOutcome, ACommandSucceedsWithExitCodeZeroOnly)
{
    EXPECT_EQ(OutcomeOf(kCommand, EndedWith(0, false), false), StepOutcome::Ended);
    EXPECT_THAT(ReportOf(kCommand, EndedWith(0, false)), HasSubstr(R"(failures="0")"));
    EXPECT_THAT(ReportOf(kCommand, EndedWith(0, false)), testing::Not(HasSubstr("<failure")));
    EXPECT_THAT(ReportOf(kCommand, EndedWith(2, false)),
                HasSubstr("<failure message=\"ended with exit code 0x00000002\"/>"));
}

TEST(StepOutcome, UntilAStepHasResultsItCountsAsInterrupted)
{
    EXPECT_THAT(InterruptedReport(kProgram), HasSubstr("interrupted: the machine or the run ended in this step"));
    EXPECT_THAT(InterruptedReport(kProgram), HasSubstr(R"(failures="1")"));
}

TEST(StepOutcome, AReportIsWellFormedWhateverATestIsCalled)
{
    StepEnd end = EndedWith(1, false);
    end.lastCase = "a<b & \"c\"\x01";
    EXPECT_THAT(ReportOf(kProgram, end), HasSubstr("a&lt;b &amp; &quot;c&quot; \"/>"));
}

TEST(StepOutcome, TheLastTestIsTheOneThatTheOutputNamesLast)
{
    EXPECT_EQ(LastCase("[ RUN      ] A.One\r\n[       OK ] A.One (1 ms)\r\n[ RUN      ] A.Two\r\nword"), "A.Two");
    EXPECT_EQ(LastCase("no test"), "");
}
