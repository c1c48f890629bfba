#include "RemovedDevices.h"

#include "DevicesWithId.h"
// regstr.h needs windows.h first.
#include <regstr.h>

namespace {
/// @return false also when the system cannot list the present devices or identify this one: what is not known to be
///         absent is not marked.
bool IsKnownToBeAbsent(const SetupApi& api, const char* hardwareId, const InstanceId& instance) noexcept
{
    DevicesWithId present(api, hardwareId, Presence::PresentOnly);
    if (!present.IsOpen() || instance.front() == '\0') {
        return false;
    }
    while (present.Next()) {
        if (lstrcmpiA(present.Instance().data(), instance.data()) == 0) {
            return false;
        }
    }
    return true;
}

bool Mark(const SetupApi& api, HDEVINFO devices, SP_DEVINFO_DATA& device) noexcept
{
    DWORD flags = 0;
    // ERROR_INVALID_DATA means that the device has no flags yet. Flags that cannot be read for another reason must not
    // be overwritten: one of them keeps a device disabled.
    if (api.getDeviceRegistryProperty(devices, &device, SPDRP_CONFIGFLAGS, nullptr, reinterpret_cast<BYTE*>(&flags),
                                      sizeof(flags), nullptr) == FALSE &&
        GetLastError() != ERROR_INVALID_DATA) {
        return false;
    }
    flags |= CONFIGFLAG_REINSTALL;
    return api.setDeviceRegistryProperty(devices, &device, SPDRP_CONFIGFLAGS, reinterpret_cast<const BYTE*>(&flags),
                                         sizeof(flags)) != FALSE;
}
} // namespace

unsigned MarkForReinstallation(const SetupApi& api, const char* hardwareId) noexcept
{
    DevicesWithId devices(api, hardwareId, Presence::AlsoRemoved);
    unsigned marked = 0;
    while (devices.IsOpen() && devices.Next()) {
        if (IsKnownToBeAbsent(api, hardwareId, devices.Instance()) && Mark(api, devices.Set(), devices.Device())) {
            ++marked;
        }
    }
    return marked;
}
