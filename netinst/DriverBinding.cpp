#include "DriverBinding.h"

#include <windows.h>

#include "BoundDevices.h"
#include "EntryPoints.h"
#include "FailureReason.h"
#include "InstallOutcome.h"
#include "NetInst.h"
#include "NetInstTrace.h"
#include "RemovedDevices.h"
#include "RestartRecord.h"
#include "ServedDevice.h"
#include "SetupApi.h"
#include "SystemLibrary.h"
#include "WindowStation.h"

static_assert(kStatusRefused == kNetInstRefused && kErrorNotThere == kNetInstNotThere);

namespace {
/// What the platform's driver update returned.
struct UpdateAnswer
{
    uint32_t error = ERROR_SUCCESS;
    bool restartNeeded = false; ///< the platform could not stop the old driver
};

DWORD UpdateFlags(const SetupApi& api) noexcept
{
    const bool mayAsk = api.getNonInteractiveMode() == FALSE && WindowsAreSeen();
    return mayAsk ? INSTALLFLAG_FORCE : INSTALLFLAG_FORCE | INSTALLFLAG_NONINTERACTIVE;
}

UpdateAnswer UpdateDevices(const SetupApi& api, const char* hardwareId, const char* infPath) noexcept
{
    if (const uint32_t error = CheckServedDevice(api, hardwareId, infPath); error != ERROR_SUCCESS) {
        return {.error = error};
    }
    const UniqueLibrary library = LoadSystemLibrary("newdev.dll");
    const auto update =
        library ? FindEntry<UpdateDriverForPlugAndPlayDevicesFn>(library.get(), "UpdateDriverForPlugAndPlayDevicesA")
                : nullptr;
    BOOL restartNeeded = FALSE;
    if (update == nullptr || !update(nullptr, hardwareId, infPath, UpdateFlags(api), &restartNeeded)) {
        return {.error = FailureReason()};
    }
    return {.restartNeeded = restartNeeded != FALSE};
}

void ReportRestart(const char* hardwareId, bool neededByUpdate) noexcept
{
    const bool recorded = RecordRestartNeeded();
    NetInstTrace("%s: restart needed, as the %s says%s\n", hardwareId, neededByUpdate ? "driver update" : "device",
                 recorded ? "" : "; this could not be recorded");
}

BindingAnswer ReportRefusal(const char* hardwareId, uint32_t error) noexcept
{
    NetInstTrace("%s: driver refused, error %08x\n", hardwareId, static_cast<unsigned>(error));
    return {.status = StatusOf(InstallOutcome::Refused), .lastError = error};
}

BindingAnswer ReportAbsence(const SetupApi& api, const char* hardwareId) noexcept
{
    const unsigned marked = MarkForReinstallation(api, hardwareId);
    NetInstTrace("%s: device not there, %u marked for re-installation\n", hardwareId, marked);
    return {.status = StatusOf(InstallOutcome::NotThere), .lastError = kErrorNotThere};
}

/// The platform has bound the driver; the devices tell whether it runs.
BindingAnswer ReportBinding(const SetupApi& api, const char* hardwareId, bool updateNeedsRestart) noexcept
{
    const BoundDevicesReport report = AskBoundDevices(api, hardwareId, updateNeedsRestart);
    if (report.restartNeeded) {
        ReportRestart(hardwareId, updateNeedsRestart);
    }
    switch (report.worst) {
        case DriverVerdict::Gone:
            return ReportAbsence(api, hardwareId);
        case DriverVerdict::Refused:
            NetInstTrace("%s: driver bound, but the device has problem code %u\n", hardwareId,
                         static_cast<unsigned>(report.problem));
            return ReportRefusal(hardwareId, ErrorForProblem(report.problem));
        case DriverVerdict::Accepted:
        case DriverVerdict::NeedsRestart:
            break;
    }
    return {.status = StatusOf(InstallOutcome::Bound)};
}
} // namespace

BindingAnswer BindDriver(const char* hardwareId, const char* infPath) noexcept
{
    const SetupApi api;
    if (api.Error() != ERROR_SUCCESS) {
        return ReportRefusal(hardwareId, api.Error());
    }
    const UpdateAnswer update = UpdateDevices(api, hardwareId, infPath);
    switch (OutcomeOf(update.error)) {
        case InstallOutcome::NotThere:
            return ReportAbsence(api, hardwareId);
        case InstallOutcome::Refused:
            return ReportRefusal(hardwareId, update.error);
        case InstallOutcome::Bound:
            break;
    }
    return ReportBinding(api, hardwareId, update.restartNeeded);
}
