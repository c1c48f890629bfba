#include "EndOfRun.h"

#include "StringIds.h"

bool OutcomeDecidesRestart(const RunOptionsRecord& options)
{
    return !options.forceReboot && !options.suppressReboot;
}

RestartAction DecideRestart(const RunOptionsRecord& options, bool restartNeeded)
{
    if (options.forceReboot) {
        return RestartAction::Restart;
    }
    if (options.suppressReboot || !restartNeeded) {
        return RestartAction::None;
    }
    if (options.msiMode) {
        return RestartAction::RecordForInstaller;
    }
    return options.silent ? RestartAction::Restart : RestartAction::Ask;
}

bool IscsiSettingsAreVerified(bool iscsiBootAdapter, const IscsiConditions& conditions)
{
    return IscsiBootNeedsRestart(iscsiBootAdapter, conditions) && conditions.crashDumpEnabled;
}

bool IscsiBootNeedsRestart(bool iscsiBootAdapter, const IscsiConditions& conditions)
{
    return iscsiBootAdapter && conditions.rightSystem && conditions.patchInstalled && conditions.initiatorPresent;
}

unsigned OutcomeString(bool deviceMatched, bool installFailed)
{
    if (!deviceMatched) {
        return kStringNoAdapter;
    }
    return installFailed ? kStringSomeFailed : kStringDone;
}
