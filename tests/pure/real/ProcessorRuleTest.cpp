#include "ProcessorRule.h"

#include <gmock/gmock.h>

using testing::HasSubstr;
using testing::Optional;

TEST(ProcessorRule, AnX64MachineIsOneForTheDrivers)
{
    EXPECT_EQ(WhyNoX64Machine(0x8664), std::nullopt);
}

TEST(ProcessorRule, ASystemThatDoesNotTellItsProcessorHasAnX64One)
{
    EXPECT_EQ(WhyNoX64Machine(std::nullopt), std::nullopt);
}

TEST(ProcessorRule, AnArm64MachineIsNamed)
{
    EXPECT_THAT(WhyNoX64Machine(0xAA64), Optional(HasSubstr("the processor is ARM64")));
}

TEST(ProcessorRule, AnyOtherProcessorIsNamedByItsNumber)
{
    EXPECT_THAT(WhyNoX64Machine(0x01C4), Optional(HasSubstr("the processor is 0x01C4")));
}
