#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

/// The wire format of an adapter driver's private request, which is also that of its answer. All numbers are
/// little-endian:
///   0  32 bits  request identifier (OID)
///   4  32 bits  status: written by the driver, 0 for success
///   8  32 bits  data length: written by the driver, the bytes that it has written or that it would need
///   12          the data, sent with the request and replaced by the answer
inline constexpr uint32_t kPrivateHeaderBytes = 12;

/// Status of a request that never got an answer.
inline constexpr uint32_t kStatusUnsuccessful = 0xC0000001;
/// Status of a driver that does not know the identifier.
inline constexpr uint32_t kStatusNotSupported = 0xC00000BB;

/// A request in memory.
struct PrivateRequestBuffer
{
    std::unique_ptr<std::byte[]> bytes; ///< null when there was no memory for it
    uint32_t size = 0;                  ///< header and data, in bytes

    [[nodiscard]] std::span<std::byte> All() const { return {bytes.get(), size}; }
};

/// Builds a request that carries `data`; status and data length are 0.
/// @return a buffer without bytes when there is not enough memory, and for data so long that header and data together
///         have no 32-bit length.
[[nodiscard]] PrivateRequestBuffer MakePrivateRequest(uint32_t oid, std::span<const std::byte> data);

/// What the driver answered.
struct PrivateAnswer
{
    uint32_t status = kStatusUnsuccessful;
    uint32_t bytesReturned = 0; ///< bytes copied to the caller's data
    uint32_t bytesNeeded = 0;   ///< the driver's data length when its status is not success, else 0
    uint32_t error = 0;         ///< Win32 error that corresponds to the status, 0 for success
};

/// Takes an answered request apart. What the driver has written is copied to `data`, whatever the status says, but
/// never more than `data` holds: a driver's data length may name more bytes than there are.
/// @param buffer  The answered request, made for data of the same length as `data`.
[[nodiscard]] PrivateAnswer ReadPrivateAnswer(const PrivateRequestBuffer& buffer, std::span<std::byte> data);

/// @return true for the two answers to the boot-mode query that mean an iSCSI boot adapter; every other answer is not
///         iSCSI.
[[nodiscard]] constexpr bool IsIScsiBootMode(uint32_t bootMode)
{
    return bootMode == 2 || bootMode == 3;
}
