#include "StepReport.h"

#include <gmock/gmock.h>

using testing::ElementsAre;

namespace {
constexpr ProgramEnd kGoodEnd = {ProgramEnd::Kind::Ended, 0};

StepRequest Request(bool failOnFailure)
{
    StepRequest request;
    request.folder = "C:\\kit";
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

TEST(StepReport, ASuccessTellsTheVersion)
{
    EXPECT_THAT(StepReport(Request(false), kGoodEnd, Success()),
                ElementsAre("the program ended with exit code 0", "Install = SUCCESS, Version = 11.4.62.0"));
}

TEST(StepReport, NoAdapterIsNoFailureEvenWhenFailuresFailThePackage)
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

TEST(StepReport, AProgramThatWasStoppedIsAFailureWhateverItHadRecorded)
{
    constexpr ProgramEnd end = {ProgramEnd::Kind::StoppedForTime, 0};
    EXPECT_TRUE(StepHasFailed(end, Success()));
    EXPECT_THAT(StepReport(Request(false), end, Success()),
                ElementsAre("the program did not end within 30 seconds and was stopped",
                            "Install = SUCCESS, Version = 11.4.62.0", "the package goes on: FAILONFAILURE is not 1"));
}

TEST(StepReport, ANeededRestartIsNoFailure)
{
    ResultRecords records = Success();
    records.restartNeeded = true;
    EXPECT_FALSE(StepHasFailed(kGoodEnd, records));
}
