#include "StepReport.h"

#include <gmock/gmock.h>

using testing::ElementsAre;

namespace {
constexpr ProgramEnd kGoodEnd = {ProgramEnd::Kind::Ended, 0};

StepRequest Request(bool failOnFailure)
{
    StepRequest request;
    request.program = "C:\\kit\\Morvix.exe";
    request.failOnFailure = failOnFailure;
    request.timeLimitSeconds = 30;
    return request;
}

ResultRecords Success()
{
    ResultRecords records;
    records.install = "SUCCESS";
    records.version = "11.4.62.0";
    return records;
}

ResultRecords Failure()
{
    ResultRecords records;
    records.install = "FAILURE";
    records.failedFamilies = {"TAVG_PCIE", "TAVX"};
    return records;
}
} // namespace

TEST(StepReport, ASuccessNamesTheVersion)
{
    EXPECT_THAT(StepReport(Request(false), kGoodEnd, Success()),
                ElementsAre("the program ended with exit code 0", "Install = SUCCESS, Version = 11.4.62.0"));
}

TEST(StepReport, NoAdapterIsNotAFailureEvenWhenFailuresFailThePackage)
{
    EXPECT_FALSE(StepHasFailed(kGoodEnd, {}));
    EXPECT_THAT(StepReport(Request(true), kGoodEnd, {}),
                ElementsAre("the program ended with exit code 0", "Install is not recorded: no adapter was matched"));
}

TEST(StepReport, AFailureNamesItsFamilies)
{
    EXPECT_TRUE(StepHasFailed(kGoodEnd, Failure()));
    EXPECT_THAT(StepReport(Request(false), kGoodEnd, Failure()),
                ElementsAre("the program ended with exit code 0", "Install = FAILURE", "FAILURE of family TAVG_PCIE",
                            "FAILURE of family TAVX", "the package goes on: FAILONFAILURE is not 1"));
}

TEST(StepReport, AFailureThatFailsThePackageSaysSo)
{
    EXPECT_EQ(StepReport(Request(true), kGoodEnd, Failure()).back(), "the package fails: FAILONFAILURE is 1");
}

TEST(StepReport, AProgramThatCannotBeStartedIsAFailure)
{
    constexpr ProgramEnd end = {ProgramEnd::Kind::NotStarted, 2};
    EXPECT_TRUE(StepHasFailed(end, {}));
    EXPECT_THAT(StepReport(Request(false), end, {}),
                ElementsAre("the program cannot be started: error 2", "the package goes on: FAILONFAILURE is not 1"));
}

TEST(StepReport, AProgramThatRefusesToWorkIsAFailureAndItsCodeIsTheSignedOne)
{
    constexpr ProgramEnd end = {ProgramEnd::Kind::Ended, 0xFFFFFFFF};
    EXPECT_TRUE(StepHasFailed(end, {}));
    EXPECT_THAT(StepReport(Request(true), end, {}),
                ElementsAre("the program ended with exit code -1", "the package fails: FAILONFAILURE is 1"));
}

TEST(StepReport, AProgramThatStillRunsFailsThePackageWhateverItHadRecordedAndSaysWhatMayGoOn)
{
    constexpr ProgramEnd end = {ProgramEnd::Kind::StillRunning, 0};
    EXPECT_TRUE(StepHasFailed(end, Success()));
    EXPECT_EQ(DecideStep(Request(false), end, Success()), StepOutcome::Failed);
    EXPECT_THAT(
        StepReport(Request(false), end, Success()),
        ElementsAre("the program did not end within 30 seconds and was left running",
                    "a device installation may still be going on: leave the machine on until Morvix.exe has ended",
                    "the package fails: the result of the drivers is not known"));
    EXPECT_EQ(StepError(Request(false), end),
              "the program did not end within 30 seconds and was left running: a device "
              "installation may still be going on");
}

TEST(StepReport, ACancelledInstallationLeavesTheProgramRunningAndSaysSo)
{
    constexpr ProgramEnd end = {ProgramEnd::Kind::Cancelled, 0};
    EXPECT_EQ(DecideStep(Request(false), end, Success()), StepOutcome::Cancelled);
    EXPECT_THAT(
        StepReport(Request(false), end, {}),
        ElementsAre("the installation was cancelled and the program left running",
                    "a device installation may still be going on: leave the machine on until Morvix.exe has ended",
                    "the package fails: the result of the drivers is not known"));
}

TEST(StepReport, AFailureFailsThePackageOnlyWhenTheCallerAskedForThat)
{
    EXPECT_EQ(DecideStep(Request(false), kGoodEnd, Failure()), StepOutcome::Done);
    EXPECT_EQ(DecideStep(Request(true), kGoodEnd, Failure()), StepOutcome::Failed);
    EXPECT_EQ(DecideStep(Request(true), kGoodEnd, Success()), StepOutcome::Done);
    EXPECT_EQ(DecideStep(Request(false), {ProgramEnd::Kind::NotStarted, 2}, {}), StepOutcome::Done);
    EXPECT_EQ(DecideStep(Request(true), {ProgramEnd::Kind::NotStarted, 2}, {}), StepOutcome::Failed);
    EXPECT_EQ(StepError(Request(true), kGoodEnd), "the drivers were not installed");
}

TEST(StepReport, ANeededRestartIsNotAFailure)
{
    ResultRecords records = Success();
    records.restartNeeded = true;
    EXPECT_FALSE(StepHasFailed(kGoodEnd, records));
}

TEST(StepReport, ARestartIsNeededWhenTheProgramOrTheLibraryRecordedIt)
{
    ResultRecords records;
    EXPECT_FALSE(RestartIsNeeded(records));
    EXPECT_EQ(RestartReport(records), "RebootNeeded is not recorded: no restart");
    records.libraryNeedsRestart = true;
    EXPECT_TRUE(RestartIsNeeded(records));
    EXPECT_EQ(RestartReport(records), "NetInst has recorded a restart: it is asked for");
    records.restartNeeded = true;
    EXPECT_EQ(RestartReport(records), "RebootNeeded is recorded: a restart is asked for");
    records.libraryNeedsRestart = false;
    EXPECT_TRUE(RestartIsNeeded(records));
}
