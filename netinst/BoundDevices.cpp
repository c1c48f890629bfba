#include "BoundDevices.h"

#include <windows.h>
// cfgmgr32.h needs windows.h first.
#include <cfgmgr32.h>

#include "DevicesWithId.h"
#include "EntryPoints.h"
#include "SystemLibrary.h"

namespace {
/// The system's question for a device's state.
class DeviceStates
{
public:
    [[nodiscard]] bool CanBeRead() const noexcept { return m_getStatus != nullptr; }

    /// @param state  Receives the device's state; keeps what it was when the state cannot be read.
    /// @return the verdict on the device.
    [[nodiscard]] DriverVerdict Judge(DEVINST device, DeviceState& state) const noexcept
    {
        // Initialized: some systems return success and write nothing.
        ULONG status = 0;
        ULONG problem = 0;
        switch (m_getStatus(&status, &problem, device, 0)) {
            case CR_NO_SUCH_DEVNODE:
                return DriverVerdict::Gone;
            case CR_SUCCESS:
                state.status = status;
                state.problem = problem;
                break;
            default:
                break;
        }
        return JudgeDriver(state);
    }

private:
    const UniqueLibrary m_library = LoadSystemLibrary("cfgmgr32.dll");
    const GetDevNodeStatusFn m_getStatus =
        m_library ? FindEntry<GetDevNodeStatusFn>(m_library.get(), "CM_Get_DevNode_Status") : nullptr;
};

/// Adds one device's verdict to the report.
void Add(BoundDevicesReport& report, DriverVerdict verdict, const DeviceState& state) noexcept
{
    report.restartNeeded = report.restartNeeded || verdict == DriverVerdict::NeedsRestart;
    if (verdict > report.worst) {
        report.worst = verdict;
        report.problem = ProblemOf(state);
    }
}
} // namespace

BoundDevicesReport AskBoundDevices(const SetupApi& api, const char* hardwareId, bool updateNeedsRestart) noexcept
{
    const DeviceStates states;
    DevicesWithId devices(api, hardwareId, Presence::PresentOnly);
    BoundDevicesReport report;
    if (!states.CanBeRead() || !devices.IsOpen()) {
        const DeviceState unknown{.updateNeedsRestart = updateNeedsRestart};
        Add(report, JudgeDriver(unknown), unknown);
        return report;
    }
    while (devices.Next()) {
        DeviceState state{.updateNeedsRestart = updateNeedsRestart};
        const DriverVerdict verdict = states.Judge(devices.Device().DevInst, state);
        Add(report, verdict, state);
    }
    return report;
}
