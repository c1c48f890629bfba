#include "ServedDevice.h"

#include <cstring>
#include <memory>
#include <new>

#include "Inf.h"
#include "SourceFiles.h"

namespace {
struct DeviceSetCloser
{
    void operator()(void* devices) const noexcept { SetupDiDestroyDeviceInfoList(devices); }
};
using UniqueDeviceSet = std::unique_ptr<void, DeviceSetCloser>;

/// @return true when the multi-string property `property` of the device has the entry `wanted`.
bool HasId(HDEVINFO devices, SP_DEVINFO_DATA& device, DWORD property, const char* wanted) noexcept
{
    DWORD bytes = 0;
    SetupDiGetDeviceRegistryPropertyA(devices, &device, property, nullptr, nullptr, 0, &bytes);
    // The two spare zero bytes end the list even when the stored one is not ended.
    constexpr DWORD kSpareBytes = 2;
    const std::unique_ptr<char[]> ids(new (std::nothrow) char[bytes + kSpareBytes]());
    if (!ids || !SetupDiGetDeviceRegistryPropertyA(devices, &device, property, nullptr,
                                                   reinterpret_cast<BYTE*>(ids.get()), bytes, nullptr)) {
        return false;
    }
    for (const char* id = ids.get(); *id != '\0'; id += std::strlen(id) + 1) {
        if (lstrcmpiA(id, wanted) == 0) {
            return true;
        }
    }
    return false;
}

/// Asks the platform which driver of the INF it would take for the device, and whether that driver's files are there.
/// @return 0, ERROR_NO_COMPAT_DRIVERS when there is none, or what is wrong with the files.
uint32_t CheckDriver(HDEVINFO devices, SP_DEVINFO_DATA& device, const char* infPath) noexcept
{
    SP_DEVINSTALL_PARAMS_A parameters{};
    parameters.cbSize = sizeof(parameters);
    if (std::strlen(infPath) >= sizeof(parameters.DriverPath) ||
        !SetupDiGetDeviceInstallParamsA(devices, &device, &parameters)) {
        return ERROR_NO_COMPAT_DRIVERS;
    }
    parameters.Flags |= DI_ENUMSINGLEINF;
    std::strcpy(parameters.DriverPath, infPath);
    SP_DRVINFO_DATA_A driver{};
    driver.cbSize = sizeof(driver);
    if (!SetupDiSetDeviceInstallParamsA(devices, &device, &parameters) ||
        !SetupDiBuildDriverInfoList(devices, &device, SPDIT_COMPATDRIVER) ||
        !SetupDiEnumDriverInfoA(devices, &device, SPDIT_COMPATDRIVER, 0, &driver)) {
        return ERROR_NO_COMPAT_DRIVERS;
    }
    SP_DRVINFO_DETAIL_DATA_A detail{};
    detail.cbSize = sizeof(detail);
    // The ID list behind the fixed part does not fit and is not wanted: that refusal fills the fixed part all the same.
    if (!SetupDiGetDriverInfoDetailA(devices, &device, &driver, &detail, sizeof(detail), nullptr) &&
        GetLastError() != ERROR_INSUFFICIENT_BUFFER) {
        return FailureReason();
    }
    return CheckSourceFiles(infPath, detail.SectionName);
}
} // namespace

uint32_t CheckServedDevice(const char* hardwareId, const char* infPath) noexcept
{
    if (const Inf inf(infPath); !inf.IsOpen()) {
        return FailureReason();
    }
    const HDEVINFO listed = SetupDiGetClassDevsA(nullptr, nullptr, nullptr, DIGCF_ALLCLASSES | DIGCF_PRESENT);
    if (listed == INVALID_HANDLE_VALUE) {
        return FailureReason();
    }
    const UniqueDeviceSet devices(listed);
    uint32_t answer = ERROR_NO_SUCH_DEVINST;
    SP_DEVINFO_DATA device{};
    device.cbSize = sizeof(device);
    for (DWORD index = 0; SetupDiEnumDeviceInfo(devices.get(), index, &device); ++index) {
        if (!HasId(devices.get(), device, SPDRP_HARDWAREID, hardwareId) &&
            !HasId(devices.get(), device, SPDRP_COMPATIBLEIDS, hardwareId)) {
            continue;
        }
        answer = CheckDriver(devices.get(), device, infPath);
        if (answer != ERROR_NO_COMPAT_DRIVERS) {
            break;
        }
    }
    return answer;
}
