#include "UninstallPlan.h"

UninstallPlan PlanUninstall(const std::string& systemDirectory)
{
    UninstallPlan plan;
    plan.uninstaller = systemDirectory + "\\Tavunstl.exe";
    plan.command = "\"" + plan.uninstaller + "\" /nogui";
    plan.dataFile = systemDirectory + "\\Morvix.din";
    return plan;
}
