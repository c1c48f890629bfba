#include "UninstallPlan.h"

#include <gtest/gtest.h>

TEST(UninstallPlan, TheUninstallerOfTheSystemDirectoryRunsQuotedAndWithoutItsInterface)
{
    const UninstallPlan plan = PlanUninstall(R"(C:\Win dows\system32)");
    EXPECT_EQ(plan.uninstaller, R"(C:\Win dows\system32\Tavunstl.exe)");
    EXPECT_EQ(plan.command, R"("C:\Win dows\system32\Tavunstl.exe" /nogui)");
}

TEST(UninstallPlan, TheUninstallDataIsTheCopyInTheSystemDirectory)
{
    EXPECT_EQ(PlanUninstall(R"(C:\windows\system32)").dataFile, R"(C:\windows\system32\Morvix.din)");
}
