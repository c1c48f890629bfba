#include "NdisVersion.h"

#include <array>
#include <cstdint>
#include <span>

#include "DeviceRequest.h"
#include "Handles.h"
#include "NdisVersionWord.h"
#include "OrvSecure.h"

namespace {
constexpr DWORD kGetNdisVersion = 0x00170020; // IOCTL_NDIS_GET_VERSION

uint32_t QueryVersionWord(HANDLE device)
{
    uint32_t version = 0;
    // An answer that does not come leaves the 0, which counts as older than everything.
    static_cast<void>(SendDeviceRequest(device, kGetNdisVersion, {}, std::as_writable_bytes(std::span(&version, 1))));
    return version;
}
} // namespace

int OpenNdisDevice(HANDLE& device)
{
    std::array<char, MAX_PATH> name{};
    OrvSafeCopy("NdisVersion", __LINE__, name.data(), name.size(), R"(\\.\NDIS)");
    device = CreateFileA(name.data(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, FILE_FLAG_OVERLAPPED,
                         nullptr);
    return 1;
}

bool IsNdis52OrLater()
{
    HANDLE opened = INVALID_HANDLE_VALUE;
    OpenNdisDevice(opened);
    const UniqueFile device(opened);
    return IsNdisVersion52OrLater(QueryVersionWord(device.Get()));
}
