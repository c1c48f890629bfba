#include "RestartNeed.h"

#include "DevicePassState.h"
#include "ISCSISupport.h"
#include "IScsiConfigTool.h"
#include "NdisVersion.h"
#include "OSVersion.h"
#include "RestartReasons.h"
#include "RunState.h"
#include "Trace.h"

bool RestartIsNeeded()
{
    RestartFacts facts;
    facts.iscsiBootAdapter = DevicePassState.storageAdapterFound;
    CISCSISupport().IsiSCSISupported(facts.iscsi.rightSystem, facts.iscsi.patchInstalled, facts.iscsi.initiatorPresent,
                                     facts.iscsi.crashDumpEnabled);
    if (IscsiSettingsAreVerified(facts)) {
        Trace("iSCSI command line utility needs to be called");
        CalliSCSIConfigExe();
    }
    const COSVersion version;
    facts.system = version.GetOSCode();
    facts.version = version.Facts();
    facts.dmaEngineMatched = DevicePassState.qdatInstalled;
    facts.ndis52OrLater = NdisVersionCounts(facts) && IsNdis52OrLater();
    facts.fcoeBootPorts = RunState.fcoeBootPorts;
    facts.extensionUpdateAllowed = RunState.extensionUpdateAllowed;
    return !RestartReasons(facts).empty();
}
