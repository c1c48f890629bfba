#include "EndOfRun.h"

#include "StringIds.h"

bool OutcomeDecidesRestart(const RunOptionsRecord& options)
{
    return options.forceReboot == 0 && options.suppressReboot == 0;
}

RestartAction DecideRestart(const RunOptionsRecord& options, bool restartNeeded)
{
    if (options.forceReboot != 0) {
        return RestartAction::Restart;
    }
    if (options.suppressReboot != 0 || !restartNeeded) {
        return RestartAction::None;
    }
    if (options.msiMode != 0) {
        return RestartAction::RecordForInstaller;
    }
    return options.silent != 0 ? RestartAction::Restart : RestartAction::Ask;
}

unsigned OutcomeString(bool deviceMatched, bool installFailed)
{
    if (!deviceMatched) {
        return kStringNoAdapter;
    }
    return installFailed ? kStringSomeFailed : kStringDone;
}
