#pragma once

#include <string>

#include "DescribeMachine.h"

/// Reads a SYSTEM hive, and the hive SOFTWARE in the same folder when there is one: only that one has the system's
/// version. Without it the user has to name the system. Linux only.
/// @param path  Of the SYSTEM hive.
[[nodiscard]] Machine ReadHive(const std::string& path, const MachineOrigin& origin);
