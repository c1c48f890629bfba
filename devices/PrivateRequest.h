#pragma once

#include <windows.h>

#include <cstdint>
#include <string>

/// Opens the device under which a network adapter's driver can be reached.
/// @param deviceName  Name without the "\\.\" before it: the adapter's network-configuration instance ID.
/// @return a handle for overlapped reading and writing, to be closed by the caller, or INVALID_HANDLE_VALUE.
[[nodiscard]] HANDLE OpenAdapterDevice(const std::string& deviceName);

/// Asks an adapter's driver for the name of its private control device and opens that.
/// @param adapterDevice  From OpenAdapterDevice; also one that could not be opened.
/// @return a handle to be closed by the caller, or INVALID_HANDLE_VALUE with the last error telling why: 6 for an
///         adapter device that is not open.
[[nodiscard]] HANDLE OpenPrivateDevice(HANDLE adapterDevice);

/// Sends a private request to an adapter's driver.
/// @param device         From OpenPrivateDevice.
/// @param oid            What is asked.
/// @param data           Sent with the request and overwritten by the answer; may be null when `dataBytes` is 0.
/// @param dataBytes      Length of `data` in bytes.
/// @param bytesReturned  Receives how many bytes of `data` are the answer.
/// @param bytesNeeded    Receives the driver's data length when its status is not success, else 0.
/// @param error          Receives the Win32 error, 0 for success; it is the last error as well when the call returns.
/// @return the driver's status, 0 for success; 0xC0000001 when the request did not get through.
uint32_t QueryPrivateOid(HANDLE device, uint32_t oid, void* data, uint32_t dataBytes, uint32_t& bytesReturned,
                         uint32_t& bytesNeeded, uint32_t& error);
