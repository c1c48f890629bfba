#include "UninstallPlan.h"

UninstallPlan PlanUninstall(const std::string& systemDirectory)
{
    UninstallPlan plan;
    plan.uninstaller = systemDirectory + "\\Tavunstl.exe";
    plan.arguments = "/nogui";
    plan.dataFile = systemDirectory + "\\Morvix.din";
    return plan;
}

std::string UninstallTimeError(std::uint32_t limitSeconds)
{
    return "the uninstaller did not end within " + std::to_string(limitSeconds) +
           " seconds and was left running: it may still be removing drivers";
}
