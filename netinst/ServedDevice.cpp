#include "ServedDevice.h"

#include <cstring>

#include "DevicesWithId.h"
#include "Inf.h"
#include "SourceFiles.h"

namespace {
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
    // The ID list after the fixed part does not fit and is not needed: the fixed part is filled nevertheless.
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
    DevicesWithId devices(hardwareId, Presence::PresentOnly);
    if (!devices.IsOpen()) {
        return FailureReason();
    }
    uint32_t answer = ERROR_NO_SUCH_DEVINST;
    while (devices.Next()) {
        answer = CheckDriver(devices.Set(), devices.Device(), infPath);
        if (answer != ERROR_NO_COMPAT_DRIVERS) {
            break;
        }
    }
    return answer;
}
