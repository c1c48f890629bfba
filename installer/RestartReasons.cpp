#include "RestartReasons.h"

#include "DevicePassState.h"
#include "EndOfRun.h"
#include "ISCSISupport.h"
#include "IScsiConfigTool.h"
#include "NdisVersion.h"
#include "OSVersion.h"
#include "RunState.h"
#include "Trace.h"

namespace {
IscsiConditions AskIscsiConditions()
{
    IscsiConditions conditions;
    CISCSISupport().IsiSCSISupported(conditions.rightSystem, conditions.patchInstalled, conditions.initiatorPresent,
                                     conditions.crashDumpEnabled);
    return conditions;
}

// A new DMA-engine driver takes effect at the next start where the network stack uses the engine: NDIS 5.2 and later,
// on servers and later workstations but not on Windows Vista.
bool DmaEngineNeedsRestart()
{
    const COSVersion system;
    return DevicePassState.qdatInstalled != 0 && system.IsServerOrVistaLater() && !system.IsVistaWorkstation() &&
           IsNdis52OrLater();
}

bool FcoeNeedsRestart()
{
    return RunState.fcoeBootPorts && RunState.extensionUpdateAllowed;
}
} // namespace

bool RestartIsNeeded()
{
    const IscsiConditions conditions = AskIscsiConditions();
    const bool iscsiBootAdapter = DevicePassState.storageAdapterFound != 0;
    if (IscsiSettingsAreVerified(iscsiBootAdapter, conditions)) {
        Trace("iSCSI command line utility needs to be called");
        CalliSCSIConfigExe();
    }
    return DmaEngineNeedsRestart() || IscsiBootNeedsRestart(iscsiBootAdapter, conditions) || FcoeNeedsRestart();
}
