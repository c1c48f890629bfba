#pragma once

#include <windows.h>

/// Opens the network driver interface's device for a version query.
/// @param device  Receives the handle, to be closed by the caller; INVALID_HANDLE_VALUE when there is no such device.
/// @return always 1: whether the device opened shows in the handle.
int OpenNdisDevice(HANDLE& device);

/// @return true when the network driver interface is of version 5.2 or later; false also when it cannot be asked.
[[nodiscard]] bool IsNdis52OrLater();
