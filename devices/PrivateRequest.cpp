#include "PrivateRequest.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <span>
#include <string_view>

#include "DeviceRequest.h"
#include "PrivateRequestBuffer.h"

namespace {
constexpr DWORD kQueryGlobalStatistics = 0x00170002; // IOCTL_NDIS_QUERY_GLOBAL_STATS
constexpr DWORD kPrivateRequest = 0x00172800;        // device type 0x17, function 0xA00, buffered
constexpr uint32_t kDeviceNameOid = 0xFF0201A9;
constexpr std::string_view kDevicePrefix = R"(\\.\)";

HANDLE NoDevice(DWORD error)
{
    SetLastError(error);
    return INVALID_HANDLE_VALUE;
}

PrivateAnswer Ask(HANDLE device, uint32_t oid, std::span<std::byte> data)
{
    if (device == INVALID_HANDLE_VALUE) {
        return {.error = ERROR_INVALID_HANDLE};
    }
    const PrivateRequestBuffer buffer = MakePrivateRequest(oid, data);
    if (!buffer.bytes) {
        return {.error = ERROR_NOT_ENOUGH_MEMORY};
    }
    const DeviceRequestResult sent = SendDeviceRequest(device, kPrivateRequest, buffer.All(), buffer.All());
    if (!sent.answered) {
        return {.error = sent.error};
    }
    return ReadPrivateAnswer(buffer, data);
}
} // namespace

HANDLE OpenAdapterDevice(const std::string& deviceName)
{
    return CreateFileA((std::string(kDevicePrefix) + deviceName).c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                       OPEN_EXISTING, FILE_FLAG_OVERLAPPED, nullptr);
}

HANDLE OpenPrivateDevice(HANDLE adapterDevice)
{
    if (adapterDevice == INVALID_HANDLE_VALUE) {
        return NoDevice(ERROR_INVALID_HANDLE);
    }
    constexpr std::size_t kNameBytes = 256;
    // One byte more than the driver may fill: a name without a terminator ends there.
    std::array<char, kNameBytes + 1> name{};
    std::ranges::copy(kDevicePrefix, name.begin());
    const std::span<char> answer = std::span(name).subspan(kDevicePrefix.size(), kNameBytes - kDevicePrefix.size());
    const DeviceRequestResult sent =
        SendDeviceRequest(adapterDevice, kQueryGlobalStatistics, std::as_bytes(std::span(&kDeviceNameOid, 1)),
                          std::as_writable_bytes(answer));
    if (!sent.answered) {
        return NoDevice(sent.error);
    }
    return CreateFileA(name.data(), 0, FILE_SHARE_READ, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_READONLY, nullptr);
}

uint32_t QueryPrivateOid(HANDLE device, uint32_t oid, void* data, uint32_t dataBytes, uint32_t& bytesReturned,
                         uint32_t& bytesNeeded, uint32_t& error)
{
    const PrivateAnswer answer = Ask(device, oid, {static_cast<std::byte*>(data), dataBytes});
    bytesReturned = answer.bytesReturned;
    bytesNeeded = answer.bytesNeeded;
    error = answer.error;
    SetLastError(answer.error);
    return answer.status;
}
