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

TEST(StepRequest, OnlyOneSwitchesOnAndNoPropertyChangesTheProgram)
{
    constexpr char kInstalled[] = R"(C:\Program Files\Norda\Morvix\Morvix.exe)";
    const struct
    {
        const char* data;
        const char* program;
        bool oemVariant;
        bool failOnFailure;
        uint32_t timeLimitSeconds;
    } rows[] = {
        {R"(C:\Program Files\Norda\Morvix\Morvix.exe|||)", kInstalled, false, false, 900},
        {R"(D:\kit\Morvix.exe|1|1|60)", R"(D:\kit\Morvix.exe)", true, true, 60},
        {R"(C:\a.exe|1|0|1)", R"(C:\a.exe)", true, false, 1},
        {R"(C:\a.exe|0|1|1)", R"(C:\a.exe)", false, true, 1},
        {R"(C:\a.exe|0|0|1)", R"(C:\a.exe)", false, false, 1},
        {R"(C:\a.exe|yes|yes|1)", R"(C:\a.exe)", false, false, 1},
        {R"(C:\a.exe|11|11|1)", R"(C:\a.exe)", false, false, 1},
        {R"(C:\a.exe| 1|1 |1)", R"(C:\a.exe)", false, false, 1},
        // separators in a property
        {R"(C:\a.exe|C:\other.exe|0|1|0|900)", R"(C:\a.exe)", false, false, 900},
        {R"(C:\a.exe|0|1|C:\other.exe|900)", R"(C:\a.exe)", false, true, 900},
        {R"(C:\a.exe|||C:\other.exe|1|1|900)", R"(C:\a.exe)", false, false, 900},
    };
    for (const auto& row : rows) {
        const StepRequest request = Read(row.data);
        EXPECT_EQ(request.program, row.program) << row.data;
        EXPECT_EQ(request.oemVariant, row.oemVariant) << row.data;
        EXPECT_EQ(request.failOnFailure, row.failOnFailure) << row.data;
        EXPECT_EQ(request.timeLimitSeconds, row.timeLimitSeconds) << row.data;
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

TEST(StepRequest, AMissingPartAndAProgramWithoutItsFullPathAreRefused)
{
    for (const char* data : {"", R"(C:\kit\Morvix.exe)", R"(C:\kit\Morvix.exe|1)", R"(C:\kit\Morvix.exe|1|1)",
                             "|1|1|60", "Morvix.exe|||", R"(\Morvix.exe|||)", R"(kit\Morvix.exe|||)", "C:Morvix.exe|||",
                             R"(C:\|||)", R"(C:\kit\|||)", R"(\\server\kit\Morvix.exe|||)"}) {
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
