#pragma once

/// Marks every known device of a hardware or compatible ID for re-installation: the system then chooses its driver anew
/// when the device is back, and finds the newer one in its store.
/// @return how many devices were marked.
unsigned MarkForReinstallation(const char* hardwareId) noexcept;
