#include "FcoeCheck.h"

#include <windows.h>

#include "FcoeBootPorts.h"
#include "LangString.h"
#include "ManagementExtension.h"
#include "OrvRegKey.h"
#include "OrvString.h"
#include "RunOptions.h"
#include "RunState.h"

namespace {
constexpr bool kForReading = false;
void CheckManagementExtension()
{
    if (RunOptions.msiMode != 0) {
        RunState.extensionUpdateAllowed = 1;
        return;
    }
    COrvRegKey key;
    COrvString version;
    if (key.Open(HKEY_LOCAL_MACHINE, R"(SOFTWARE\Norda\Network_Services\TERN)", kForReading) &&
        key.GetValue("OEMVersion", version) && ManagementExtensionAllowsUpdate(static_cast<const char*>(version))) {
        RunState.extensionUpdateAllowed = 1;
    }
}
} // namespace

bool FcoeBootAllowsRun()
{
    RunState.fcoeBootPorts = AreFCoEBootEnabledPortsPresent() ? 1 : 0;
    CheckManagementExtension();
    if (RunState.fcoeBootPorts == 0) {
        return true;
    }
    if (RunState.extensionUpdateAllowed != 0) {
        RunState.fcoeRestart = 1;
        return true;
    }
    if (RunOptions.silent == 0 && RunOptions.msiMode == 0) {
        MessageBoxA(nullptr, LangString(kStringFcoeBootTooOld).c_str(), LangString(kStringInstallFailed).c_str(),
                    MB_ICONERROR);
    }
    return false;
}
