#pragma once

#include "DescribeMachine.h"

/// Reads the registry of this machine by the 8-bit calls, as the installer does, and asks which devices are present.
/// Windows only.
[[nodiscard]] Machine ReadLive(const MachineOrigin& origin);
