#pragma once

class SetupApi;

/// Marks every device with a hardware or compatible ID that is known but not present for re-installation: when such a
/// device is back, the system chooses its driver anew and finds the newer one in its store. A present device is not
/// marked, whatever its state: it would be reinstalled at the next start without need.
/// @return how many devices were marked.
unsigned MarkForReinstallation(const SetupApi& api, const char* hardwareId) noexcept;
