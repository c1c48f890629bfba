#include "DriverBinding.h"

#include <windows.h>

#include "BoundDevices.h"
#include "EntryPoints.h"
#include "Inf.h"
#include "InstallOutcome.h"
#include "NetInst.h"
#include "NetInstTrace.h"
#include "RemovedDevices.h"
#include "RestartRecord.h"
#include "ServedDevice.h"
#include "SystemLibrary.h"
#include "WindowStation.h"

static_assert(kStatusRefused == kNetInstRefused && kErrorNotThere == kNetInstNotThere);

namespace {
/// What the platform's driver update answered.
struct UpdateAnswer
{
    uint32_t error = ERROR_SUCCESS;
    bool restartWanted = false; ///< the platform could not stop the old driver
};

DWORD UpdateFlags() noexcept
{
    const bool mayAsk = SetupGetNonInteractiveMode() == FALSE && WindowsAreSeen();
    return mayAsk ? INSTALLFLAG_FORCE : INSTALLFLAG_FORCE | INSTALLFLAG_NONINTERACTIVE;
}

UpdateAnswer UpdateDevices(const char* hardwareId, const char* infPath) noexcept
{
    if (const uint32_t error = CheckServedDevice(hardwareId, infPath); error != ERROR_SUCCESS) {
        return {.error = error};
    }
    const UniqueLibrary library = LoadSystemLibrary("newdev.dll");
    const auto update =
        library ? FindEntry<UpdateDriverForPlugAndPlayDevicesFn>(library.get(), "UpdateDriverForPlugAndPlayDevicesA")
                : nullptr;
    BOOL restartWanted = FALSE;
    if (update == nullptr || !update(nullptr, hardwareId, infPath, UpdateFlags(), &restartWanted)) {
        return {.error = FailureReason()};
    }
    return {.restartWanted = restartWanted != FALSE};
}

void ReportRestart(const char* hardwareId, bool wantedByUpdate) noexcept
{
    const bool recorded = RecordRestartNeeded();
    NetInstTrace("%s: restart needed, as the %s says%s\n", hardwareId, wantedByUpdate ? "driver update" : "device",
                 recorded ? "" : "; this could not be recorded");
}

BindingAnswer ReportRefusal(const char* hardwareId, uint32_t error) noexcept
{
    NetInstTrace("%s: driver refused, error %08x\n", hardwareId, static_cast<unsigned>(error));
    return {.status = StatusOf(InstallOutcome::Refused), .lastError = error};
}

BindingAnswer ReportAbsence(const char* hardwareId) noexcept
{
    const unsigned marked = MarkForReinstallation(hardwareId);
    NetInstTrace("%s: device not there, %u marked for re-installation\n", hardwareId, marked);
    return {.status = StatusOf(InstallOutcome::NotThere), .lastError = kErrorNotThere};
}

/// The platform has bound the driver; the devices say whether it runs.
BindingAnswer ReportBinding(const char* hardwareId, bool restartWanted) noexcept
{
    const BoundDevicesReport report = AskBoundDevices(hardwareId);
    if (restartWanted || report.restartNeeded) {
        ReportRestart(hardwareId, restartWanted);
    }
    switch (report.worst) {
        case DeviceVerdict::Gone:
            return ReportAbsence(hardwareId);
        case DeviceVerdict::Refused:
            NetInstTrace("%s: driver bound, but the device has problem code %u\n", hardwareId,
                         static_cast<unsigned>(report.problem));
            return ReportRefusal(hardwareId, ErrorForProblem(report.problem));
        case DeviceVerdict::Accepted:
        case DeviceVerdict::NeedsRestart:
            break;
    }
    return {.status = StatusOf(InstallOutcome::Bound)};
}
} // namespace

BindingAnswer BindDriver(const char* hardwareId, const char* infPath) noexcept
{
    const UpdateAnswer update = UpdateDevices(hardwareId, infPath);
    switch (OutcomeOf(update.error)) {
        case InstallOutcome::NotThere:
            return ReportAbsence(hardwareId);
        case InstallOutcome::Refused:
            return ReportRefusal(hardwareId, update.error);
        case InstallOutcome::Bound:
            break;
    }
    return ReportBinding(hardwareId, update.restartWanted);
}
