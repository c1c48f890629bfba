#pragma once

/// Records, for whoever looks after the run, that a binding takes effect only after a restart (kNetInstKey of
/// NetInst.h).
/// @return false when the value could not be written.
bool RecordRestartNeeded() noexcept;

/// Takes the record of an earlier run away.
void ForgetRestartNeeded() noexcept;
