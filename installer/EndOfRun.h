#pragma once

#include "RunOptions.h"

/// What the dialog does about a restart when the run is over.
enum class RestartAction
{
    None,
    Restart,
    Ask,                ///< the Yes/No question decides
    RecordForInstaller, ///< "RebootNeeded" tells the Windows Installer package
};

/// Whether restart reasons are evaluated: neither "/r" nor "/nr" settles the matter beforehand.
[[nodiscard]] bool OutcomeDecidesRestart(const RunOptionsRecord& options);

/// @param restartNeeded  One of the outcome's reasons holds; not looked at when the options settle the matter.
[[nodiscard]] RestartAction DecideRestart(const RunOptionsRecord& options, bool restartNeeded);

/// Which text a finished interactive run shows: the identifier of a string of the resource library.
/// @param deviceMatched  Some device found an INF file.
/// @param installFailed  The installer library refused a driver with 0xE0000207.
[[nodiscard]] unsigned OutcomeString(bool deviceMatched, bool installFailed);
