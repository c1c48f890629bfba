#include "BoundDevices.h"

#include <windows.h>
// cfgmgr32.h needs windows.h first.
#include <cfgmgr32.h>

#include "DevicesWithId.h"
#include "EntryPoints.h"
#include "SystemLibrary.h"

namespace {
/// @return the state of a device; no problem when the system cannot tell.
DeviceVerdict Ask(GetDevNodeStatusFn getStatus, DEVINST device, DeviceState& state) noexcept
{
    // Filled beforehand: there are systems that answer success and write nothing.
    ULONG status = 0;
    ULONG problem = 0;
    switch (getStatus(&status, &problem, device, 0)) {
        case CR_SUCCESS:
            state = {.status = status, .problem = problem};
            return JudgeDevice(state);
        case CR_NO_SUCH_DEVNODE:
            return DeviceVerdict::Gone;
        default:
            return DeviceVerdict::Accepted;
    }
}
} // namespace

BoundDevicesReport AskBoundDevices(const char* hardwareId) noexcept
{
    const UniqueLibrary library = LoadSystemLibrary("cfgmgr32.dll");
    const auto getStatus = library ? FindEntry<GetDevNodeStatusFn>(library.get(), "CM_Get_DevNode_Status") : nullptr;
    DevicesWithId devices(hardwareId, Presence::PresentOnly);
    BoundDevicesReport report;
    if (getStatus == nullptr || !devices.IsOpen()) {
        report.worst = DeviceVerdict::Accepted;
        return report;
    }
    while (devices.Next()) {
        DeviceState state;
        const DeviceVerdict verdict = Ask(getStatus, devices.Device().DevInst, state);
        report.restartNeeded = report.restartNeeded || verdict == DeviceVerdict::NeedsRestart;
        if (verdict > report.worst) {
            report.worst = verdict;
            report.problem = ProblemOf(state);
        }
    }
    return report;
}
