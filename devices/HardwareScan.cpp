#include "HardwareScan.h"

#include "EntryPoints.h"
#include "Handles.h"
#include "Trace.h"

int ScanForHardwareChanges()
{
    Trace("ScanForHardwareChanges()\n");
    UniqueLibrary library(LoadLibraryA("cfgmgr32.dll"));
    // Handles below 32 once were error codes; they still count as "not loaded".
    if (reinterpret_cast<UINT_PTR>(library.get()) >= 32) {
        const auto locate = FindEntry<LocateDevNodeFn>(library.get(), "CM_Locate_DevNodeA");
        const auto reenumerate = FindEntry<ReenumerateDevNodeFn>(library.get(), "CM_Reenumerate_DevNode");
        if (locate != nullptr && reenumerate != nullptr) {
            // The library stays loaded for the rest of the process, by design.
            static_cast<void>(library.release());
            DEVINST root = 0;
            if (locate(&root, nullptr, CM_LOCATE_DEVNODE_NORMAL) != CR_SUCCESS) {
                return 0;
            }
            return reenumerate(root, CM_REENUMERATE_NORMAL) == CR_SUCCESS ? 1 : 0;
        }
    }
    Trace("error with GetProcAddress\n");
    return 0;
}
