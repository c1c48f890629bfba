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
    const StepRequest request = Read("|||C:\\Program Files\\Norda\\Morvix\\");
    EXPECT_FALSE(request.oemVariant);
    EXPECT_FALSE(request.failOnFailure);
    EXPECT_EQ(request.timeLimitSeconds, 900U);
    EXPECT_EQ(request.folder, "C:\\Program Files\\Norda\\Morvix");
}

TEST(StepRequest, EveryBackslashBehindTheFolderIsDropped)
{
    EXPECT_EQ(Read("|||D:\\kit\\\\").folder, "D:\\kit");
}

TEST(StepRequest, OneSwitchesOn)
{
    const StepRequest request = Read("1|1|60|D:\\kit");
    EXPECT_TRUE(request.oemVariant);
    EXPECT_TRUE(request.failOnFailure);
    EXPECT_EQ(request.timeLimitSeconds, 60U);
    EXPECT_EQ(request.folder, "D:\\kit");
}

TEST(StepRequest, EachSwitchStandsForItself)
{
    EXPECT_TRUE(Read("1|0|1|C:\\a").oemVariant);
    EXPECT_FALSE(Read("1|0|1|C:\\a").failOnFailure);
    EXPECT_FALSE(Read("0|1|1|C:\\a").oemVariant);
    EXPECT_TRUE(Read("0|1|1|C:\\a").failOnFailure);
}

TEST(StepRequest, OnlyOneSwitchesOn)
{
    for (const char* data : {"0|0|1|C:\\a", "yes|yes|1|C:\\a", "11|11|1|C:\\a", " 1|1 |1|C:\\a"}) {
        EXPECT_FALSE(Read(data).oemVariant) << data;
        EXPECT_FALSE(Read(data).failOnFailure) << data;
    }
}

TEST(StepRequest, ATimeThatIsNoUsableNumberMeansTheDefault)
{
    for (const char* data : {"||0|C:\\a", "||-1|C:\\a", "||10s|C:\\a", "||x|C:\\a", "||86401|C:\\a", "|| 5|C:\\a",
                             "||99999999999999999999|C:\\a"}) {
        EXPECT_EQ(Read(data).timeLimitSeconds, kDefaultTimeLimitSeconds) << data;
    }
    EXPECT_EQ(Read("||1|C:\\a").timeLimitSeconds, 1U);
    EXPECT_EQ(Read("||86400|C:\\a").timeLimitSeconds, kLongestTimeLimitSeconds);
}

TEST(StepRequest, TheLongestTimeFitsInMilliseconds)
{
    EXPECT_LT(std::uint64_t{kLongestTimeLimitSeconds} * 1000, std::uint64_t{0xFFFFFFFF});
}

TEST(StepRequest, AMissingPartIsRefused)
{
    for (const char* data : {"", "C:\\kit", "1|C:\\kit", "1|1|C:\\kit", "1|1|60", "1|1|60|", "1|1|60|\\"}) {
        EXPECT_FALSE(ReadStepRequest(data).has_value()) << data;
    }
}

TEST(StepRequest, TheProgramIsCalledByItsFullQuotedPath)
{
    EXPECT_EQ(StepCommandLine(Read("|||C:\\Program Files\\Norda\\Morvix\\")),
              R"("C:\Program Files\Norda\Morvix\Morvix.exe" /s /m)");
}

TEST(StepRequest, TheOemVariantRunsWithMd)
{
    EXPECT_EQ(StepCommandLine(Read("1|||C:\\kit\\")), R"("C:\kit\Morvix.exe" /s /md)");
}
