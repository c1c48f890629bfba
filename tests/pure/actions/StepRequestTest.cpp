#include "StepRequest.h"

#include <gtest/gtest.h>

namespace {
StepRequest Read(const char* data)
{
    const std::optional<StepRequest> request = ReadStepRequest(data);
    EXPECT_TRUE(request.has_value()) << data;
    return request.value_or(StepRequest());
}
} // namespace

TEST(StepRequest, WithoutPropertiesEverySwitchIsOffAndTheTimeIsTheDefault)
{
    const StepRequest request = Read("C:\\Program Files\\Norda\\Morvix\\Morvix.exe|||");
    EXPECT_FALSE(request.oemVariant);
    EXPECT_FALSE(request.failOnFailure);
    EXPECT_EQ(request.timeLimitSeconds, 900U);
    EXPECT_EQ(request.program, "C:\\Program Files\\Norda\\Morvix\\Morvix.exe");
}

TEST(StepRequest, OneSwitchesOn)
{
    const StepRequest request = Read("D:\\kit\\Morvix.exe|1|1|60");
    EXPECT_TRUE(request.oemVariant);
    EXPECT_TRUE(request.failOnFailure);
    EXPECT_EQ(request.timeLimitSeconds, 60U);
    EXPECT_EQ(request.program, "D:\\kit\\Morvix.exe");
}

TEST(StepRequest, EachSwitchIsIndependent)
{
    EXPECT_TRUE(Read("C:\\a.exe|1|0|1").oemVariant);
    EXPECT_FALSE(Read("C:\\a.exe|1|0|1").failOnFailure);
    EXPECT_FALSE(Read("C:\\a.exe|0|1|1").oemVariant);
    EXPECT_TRUE(Read("C:\\a.exe|0|1|1").failOnFailure);
}

TEST(StepRequest, OnlyOneSwitchesOn)
{
    for (const char* data : {"C:\\a.exe|0|0|1", "C:\\a.exe|yes|yes|1", "C:\\a.exe|11|11|1", "C:\\a.exe| 1|1 |1"}) {
        EXPECT_FALSE(Read(data).oemVariant) << data;
        EXPECT_FALSE(Read(data).failOnFailure) << data;
    }
}

TEST(StepRequest, SeparatorsInAPropertyCannotChangeTheProgram)
{
    for (const char* data : {"C:\\kit\\Morvix.exe|C:\\other.exe|0|1|0|900", "C:\\kit\\Morvix.exe|0|1|C:\\other.exe|900",
                             "C:\\kit\\Morvix.exe|||C:\\other.exe|1|1|900"}) {
        EXPECT_EQ(Read(data).program, "C:\\kit\\Morvix.exe") << data;
    }
}

TEST(StepRequest, ATimeThatIsNoUsableNumberMeansTheDefault)
{
    for (const char* text : {"", "0", "-1", "+1", "10s", "x", "86401", " 5", "99999999999999999999", "60|1"}) {
        EXPECT_EQ(ReadTimeLimit(text), kDefaultTimeLimitSeconds) << text;
    }
    EXPECT_EQ(ReadTimeLimit("1"), 1U);
    EXPECT_EQ(ReadTimeLimit("86400"), kLongestTimeLimitSeconds);
}

TEST(StepRequest, TheLongestTimeFitsInMilliseconds)
{
    EXPECT_LT(std::uint64_t{kLongestTimeLimitSeconds} * 1000, std::uint64_t{0xFFFFFFFF});
}

TEST(StepRequest, AMissingPartIsRefused)
{
    for (const char* data :
         {"", "C:\\kit\\Morvix.exe", "C:\\kit\\Morvix.exe|1", "C:\\kit\\Morvix.exe|1|1", "|1|1|60"}) {
        EXPECT_FALSE(ReadStepRequest(data).has_value()) << data;
    }
}

TEST(StepRequest, AProgramThatIsNotGivenByItsFullPathIsRefused)
{
    for (const char* data : {"Morvix.exe|||", "\\Morvix.exe|||", "kit\\Morvix.exe|||", "C:Morvix.exe|||", "C:\\|||",
                             "C:\\kit\\|||", "\\\\server\\kit\\Morvix.exe|||"}) {
        EXPECT_FALSE(ReadStepRequest(data).has_value()) << data;
    }
}

TEST(StepRequest, TheProgramRunsSilentlyAndTheOemVariantWithMd)
{
    EXPECT_EQ(StepArguments(Read("C:\\kit\\Morvix.exe|||")), "/s /m");
    EXPECT_EQ(StepArguments(Read("C:\\kit\\Morvix.exe|1||")), "/s /md");
}

TEST(StepRequest, TheFolderOfAProgramHasNoTrailingBackslash)
{
    EXPECT_EQ(FolderOfProgram("C:\\Program Files\\Norda\\Morvix\\Morvix.exe"), "C:\\Program Files\\Norda\\Morvix");
}
