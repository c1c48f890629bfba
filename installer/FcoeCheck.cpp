#include "FcoeCheck.h"

#include <windows.h>

#include "FcoeBootPorts.h"
#include "LangString.h"
#include "ManagementExtension.h"
#include "OrvRegKey.h"
#include "OrvString.h"
#include "RestartReasons.h"
#include "RunOptions.h"
#include "RunState.h"

namespace {
void CheckManagementExtension()
{
    if (RunOptions.msiMode) {
        RunState.extensionUpdateAllowed = true;
        return;
    }
    COrvRegKey key;
    COrvString version;
    if (key.Open(HKEY_LOCAL_MACHINE, R"(SOFTWARE\Norda\Network_Services\TERN)", kForReading) &&
        key.GetValue("OEMVersion", version) && ManagementExtensionAllowsUpdate(static_cast<const char*>(version))) {
        RunState.extensionUpdateAllowed = true;
    }
}
} // namespace

bool FcoeBootAllowsRun()
{
    RunState.fcoeBootPorts = AreFCoEBootEnabledPortsPresent();
    CheckManagementExtension();
    if (FcoeBootNeedsRestart(RunState.fcoeBootPorts, RunState.extensionUpdateAllowed)) {
        RunState.fcoeRestart = true;
        return true;
    }
    if (!RunState.fcoeBootPorts) {
        return true;
    }
    if (!RunOptions.silent && !RunOptions.msiMode) {
        MessageBoxA(nullptr, LangString(kStringFcoeBootTooOld).c_str(), LangString(kStringInstallFailed).c_str(),
                    MB_ICONERROR);
    }
    return false;
}
