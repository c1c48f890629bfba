#pragma once

#include <windows.h>

#include <cstddef>
#include <span>

/// What became of a device request.
struct DeviceRequestResult
{
    bool answered = false;   ///< the device completed the request with success
    DWORD error = NO_ERROR;  ///< Win32 error of a request that failed, else 0
    DWORD bytesAnswered = 0; ///< what the device wrote to the output, in bytes
};

/// Sends a device control request and waits, without a time limit, until the device has completed it. Works alike for
/// handles that were opened for overlapped work, on which the platform's call may return long before the answer is
/// there, and for those that were not.
/// @param device  Any device handle; INVALID_HANDLE_VALUE gives the platform's error for it.
/// @param input   Sent with the request, may be empty.
/// @param output  Receives the answer. May be the same memory as the input where the request is a buffered one.
[[nodiscard]] DeviceRequestResult SendDeviceRequest(HANDLE device, DWORD code, std::span<const std::byte> input,
                                                    std::span<std::byte> output);
