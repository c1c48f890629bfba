#pragma once

#include <windows.h>
// Needs windows.h first.
#include <srrestoreptapi.h>

#include <cstdint>

#include "EntryPoints.h"

/// The platform's restore-point function, or null on systems without it. Cleared at start-up, looked up by the
/// installation run.
extern SetRestorePointFn setRestorePoint;

/// Starts a nested system restore point of the kind "device driver install".
/// @param record    Filled here; pass it to EndRestorePoint, which ends the same change.
/// @param sequence  Sequence number of the restore point, 0 when none was started.
/// @return 1 when a restore point was started, else 0.
int BeginRestorePoint(RESTOREPOINTINFOW& record, int64_t& sequence);

/// Ends the restore point that BeginRestorePoint started.
/// @return the platform's result, 0 for failure or when there is nothing to end.
int EndRestorePoint(RESTOREPOINTINFOW& record, int64_t sequence);
