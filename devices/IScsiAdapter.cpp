#include "IScsiAdapter.h"

#include <windows.h>

#include <cstdint>

#include "DevicePassState.h"
#include "Handles.h"
#include "PrivateRequest.h"
#include "PrivateRequestBuffer.h"
#include "Trace.h"

namespace {
constexpr uint32_t kBootModeOid = 0xFF020195;

bool BootsOverIScsi(HANDLE privateDevice)
{
    uint32_t bootMode = 0;
    uint32_t bytesReturned = 0;
    uint32_t bytesNeeded = 0;
    uint32_t error = 0;
    const uint32_t status =
        QueryPrivateOid(privateDevice, kBootModeOid, &bootMode, sizeof(bootMode), bytesReturned, bytesNeeded, error);
    return status == 0 && IsIScsiBootMode(bootMode);
}
} // namespace

int IsIScsiAdapter(const std::string& instanceId)
{
    if (DevicePassState.storageAdapterFound) {
        return 1;
    }
    const UniqueFile adapter(OpenAdapterDevice(instanceId));
    // Only a null handle ends it here. A device that did not open goes on and is refused when its private device is
    // asked for, so the last error is then that of an invalid handle.
    if (adapter.Get() == nullptr) {
        return 0;
    }
    const HANDLE opened = OpenPrivateDevice(adapter.Get());
    const UniqueFile privateDevice(opened == nullptr ? INVALID_HANDLE_VALUE : opened);
    if (privateDevice.IsOpen() && BootsOverIScsi(privateDevice.Get())) {
        DevicePassState.storageAdapterFound = true;
        Trace("Found iSCSI adapter");
    }
    return 0;
}
