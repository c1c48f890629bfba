#include "RemovedDevices.h"

#include "DevicesWithId.h"
// regstr.h needs windows.h first.
#include <regstr.h>

namespace {
bool Mark(HDEVINFO devices, SP_DEVINFO_DATA& device) noexcept
{
    DWORD flags = 0;
    // A device without flags has none set. Flags that cannot be read must not be lost: one of them keeps a device
    // disabled.
    if (SetupDiGetDeviceRegistryPropertyA(devices, &device, SPDRP_CONFIGFLAGS, nullptr, reinterpret_cast<BYTE*>(&flags),
                                          sizeof(flags), nullptr) == FALSE &&
        GetLastError() != ERROR_INVALID_DATA) {
        return false;
    }
    flags |= CONFIGFLAG_REINSTALL;
    return SetupDiSetDeviceRegistryPropertyA(devices, &device, SPDRP_CONFIGFLAGS, reinterpret_cast<const BYTE*>(&flags),
                                             sizeof(flags)) != FALSE;
}
} // namespace

unsigned MarkForReinstallation(const char* hardwareId) noexcept
{
    DevicesWithId devices(hardwareId, Presence::AlsoRemoved);
    unsigned marked = 0;
    while (devices.IsOpen() && devices.Next()) {
        marked += Mark(devices.Set(), devices.Device()) ? 1U : 0U;
    }
    return marked;
}
