#pragma once

/// Records for callers of the run that a binding takes effect only after a restart (kNetInstKey of
/// NetInst.h).
/// @return false when the value could not be written.
bool RecordRestartNeeded() noexcept;

/// Deletes the record of an earlier run.
void ForgetRestartNeeded() noexcept;
