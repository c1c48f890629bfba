#pragma once

#include <cstdint>

#include "InstallerSession.h"
#include "StepReport.h"

/// Runs the maker's uninstaller when the system directory has one and waits until it has ended. Then removes the
/// uninstall data that the program put there, and its registration.
/// @return Failed when the time limit passed and Cancelled when the user cancelled, with the uninstaller left running.
///         No other failure stops the removal.
[[nodiscard]] StepOutcome UninstallDrivers(const InstallerSession& session, std::uint32_t limitSeconds);
