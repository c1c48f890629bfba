#pragma once

#include <cstdint>

#include "InstallerSession.h"
#include "StepReport.h"

/// Runs the maker's uninstaller when the system directory has one and waits until it has ended. Then removes the
/// uninstall data that the program has put there, and its registration: the file came with the kit.
/// @return Failed when the time limit passed and Cancelled when the user cancelled, with the uninstaller left running.
///         Whatever else goes wrong never stops the removal.
[[nodiscard]] StepOutcome UninstallDrivers(const InstallerSession& session, std::uint32_t limitSeconds);
