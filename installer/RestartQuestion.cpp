#include "RestartQuestion.h"

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
    facts.iscsiBootAdapter = DevicePassState.storageAdapterFound != 0;
    CISCSISupport().IsiSCSISupported(facts.iscsi.rightSystem, facts.iscsi.patchInstalled, facts.iscsi.initiatorPresent,
                                     facts.iscsi.crashDumpEnabled);
    if (IscsiSettingsAreVerified(facts)) {
        Trace("iSCSI command line utility needs to be called");
        CalliSCSIConfigExe();
    }
    const COSVersion version;
    facts.system = version.GetOSCode();
    facts.version = version.Facts();
    facts.dmaEngineMatched = DevicePassState.qdatInstalled != 0;
    facts.ndis52OrLater = NdisVersionCounts(facts) && IsNdis52OrLater();
    facts.fcoeBootPorts = RunState.fcoeBootPorts != 0;
    facts.extensionUpdateAllowed = RunState.extensionUpdateAllowed != 0;
    return !RestartReasons(facts).empty();
}
