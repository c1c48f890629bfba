#pragma once

#include <windows.h>
// The header below needs windows.h first.
#include <setupapi.h>

/// Asks the FCoE library about every present network adapter. An adapter that cannot be asked, for whatever reason, is
/// no FCoE boot port; on a machine without the library none is.
/// @return true when the machine was booted over FCoE through some adapter or reaches the disk of its page file
///         through one.
[[nodiscard]] bool AreFCoEBootEnabledPortsPresent();

/// The same for a list of adapters that is given.
/// @param adapters  Destroyed by the call. INVALID_HANDLE_VALUE when the list could not be read.
[[nodiscard]] bool AreFCoEBootEnabledPortsAmong(HDEVINFO adapters);
