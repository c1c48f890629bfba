#include "UninstallPlan.h"

#include <gtest/gtest.h>

TEST(UninstallPlan, TheUninstallerIsTheOneOfTheSystemDirectoryAndRunsWithoutItsInterface)
{
    const UninstallPlan plan = PlanUninstall(R"(C:\Win dows\system32)");
    EXPECT_EQ(plan.uninstaller, R"(C:\Win dows\system32\Tavunstl.exe)");
    EXPECT_EQ(plan.arguments, "/nogui");
}

TEST(UninstallPlan, TheUninstallDataIsTheCopyInTheSystemDirectory)
{
    EXPECT_EQ(PlanUninstall(R"(C:\windows\system32)").dataFile, R"(C:\windows\system32\Morvix.din)");
}

TEST(UninstallPlan, AnUninstallerThatTakesTooLongIsReportedAsStillRunning)
{
    EXPECT_EQ(UninstallTimeError(30),
              "the uninstaller did not end within 30 seconds and was left running: it may still be removing drivers");
}
