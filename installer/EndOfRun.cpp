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

unsigned OutcomeString(bool deviceMatched, bool installFailed)
{
    if (!deviceMatched) {
        return kStringNoAdapter;
    }
    return installFailed ? kStringSomeFailed : kStringDone;
}
