#include "ServedDevice.h"

#include <cstring>

#include "DevicesWithId.h"
#include "Inf.h"
#include "SourceFiles.h"

namespace {
/// Asks the platform which driver of the INF it would choose for the device, and checks that driver's files.
/// @return 0, ERROR_NO_COMPAT_DRIVERS when there is no such driver, or what is wrong with the files.
uint32_t CheckDriver(const SetupApi& api, HDEVINFO devices, SP_DEVINFO_DATA& device, const char* infPath) noexcept
{
    SP_DEVINSTALL_PARAMS_A parameters{};
    parameters.cbSize = sizeof(parameters);
    if (std::strlen(infPath) >= sizeof(parameters.DriverPath) ||
        !api.getDeviceInstallParams(devices, &device, &parameters)) {
        return ERROR_NO_COMPAT_DRIVERS;
    }
    parameters.Flags |= DI_ENUMSINGLEINF;
    std::strcpy(parameters.DriverPath, infPath);
    SP_DRVINFO_DATA_A driver{};
    driver.cbSize = sizeof(driver);
    if (!api.setDeviceInstallParams(devices, &device, &parameters) ||
        !api.buildDriverInfoList(devices, &device, SPDIT_COMPATDRIVER) ||
        !api.enumDriverInfo(devices, &device, SPDIT_COMPATDRIVER, 0, &driver)) {
        return ERROR_NO_COMPAT_DRIVERS;
    }
    SP_DRVINFO_DETAIL_DATA_A detail{};
    detail.cbSize = sizeof(detail);
    // The ID list after the fixed part does not fit and is not needed; the fixed part is filled in even so.
    if (!api.getDriverInfoDetail(devices, &device, &driver, &detail, sizeof(detail), nullptr) &&
        GetLastError() != ERROR_INSUFFICIENT_BUFFER) {
        return FailureReason();
    }
    return CheckSourceFiles(api, infPath, detail.SectionName);
}
} // namespace

uint32_t CheckServedDevice(const SetupApi& api, const char* hardwareId, const char* infPath) noexcept
{
    if (const Inf inf(api, infPath); !inf.IsOpen()) {
        return FailureReason();
    }
    DevicesWithId devices(api, hardwareId, Presence::PresentOnly);
    if (!devices.IsOpen()) {
        return FailureReason();
    }
    uint32_t answer = ERROR_NO_SUCH_DEVINST;
    while (devices.Next()) {
        answer = CheckDriver(api, devices.Set(), devices.Device(), infPath);
        if (answer != ERROR_NO_COMPAT_DRIVERS) {
            break;
        }
    }
    return answer;
}
