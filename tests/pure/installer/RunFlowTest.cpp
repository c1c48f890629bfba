#include "RunFlow.h"

#include <gtest/gtest.h>

TEST(RunFlow, FamiliesOfTheNtLineTakeTheNtFlow)
{
    for (const char* family : {"Windows 2000", "Windows Whistler", "Windows Vista", "WINDOWS VISTA"}) {
        EXPECT_EQ(RunFlow::WindowsNT, FlowForFamily(family)) << family;
    }
}

TEST(RunFlow, LegacyFamiliesHaveTheirOwnFlows)
{
    EXPECT_EQ(RunFlow::WindowsMe, FlowForFamily("Windows Millenium"));
    EXPECT_EQ(RunFlow::Windows98, FlowForFamily("windows 98"));
    EXPECT_EQ(RunFlow::Unknown, FlowForFamily("Windows Millennium")) << "the family is spelled with one n";
}

TEST(RunFlow, EveryOtherFamilyHasNoFlow)
{
    for (const char* family : {"Windows NT", "Windows XP", "Windows 95", "Windows Vista ", ""}) {
        EXPECT_EQ(RunFlow::Unknown, FlowForFamily(family)) << family;
    }
}

TEST(RunFlow, SilentRunsAndInstallerStepsAreUnattendedButTheOemVariantIsNot)
{
    RunOptionsRecord options;
    EXPECT_FALSE(IsUnattended(options));
    options.msiMode = 1;
    EXPECT_TRUE(IsUnattended(options));
    options.oemGui = 1;
    EXPECT_FALSE(IsUnattended(options));
    options.silent = 1;
    EXPECT_TRUE(IsUnattended(options));
}
