#include "SystemProbe.h"

#include <windows.h>

#include <string>

#include "Administrator.h"
#include "LangString.h"
#include "NetInstLibrary.h"
#include "ProberStatus.h"
#include "Trace.h"

uint32_t ProbeSystem(DriverInstallRecord& record)
{
    uint32_t status = 0;
    const auto prober = CreateSysProber(status);
    if (!prober) {
        return status;
    }
    if (RunningAsAdministrator() == 0) {
        return kStatusNotAdministrator;
    }
    return static_cast<uint32_t>(prober->IdentifySystem(&record));
}

void ReportProbeFailure(uint32_t status, const DriverInstallRecord& record, bool silent)
{
    const auto id = MessageForProberStatus(status, FamilyOf(record));
    const std::string message = id ? LangString(*id) : std::string();
    Trace(message);
    if (!silent) {
        MessageBoxA(nullptr, message.c_str(), LangString(kStringInstallFailed).c_str(), MB_ICONERROR);
    }
}
