#include "DriverUpdate.h"

#include "EntryPoints.h"
#include "Handles.h"
#include "Trace.h"

uint32_t UpdateDriver(const std::string& infPath, const std::string& hardwareId)
{
    const UniqueLibrary library(LoadLibraryA("newdev.dll"));
    const auto update =
        library ? FindEntry<UpdateDriverForPlugAndPlayDevicesFn>(library.get(), "UpdateDriverForPlugAndPlayDevicesA")
                : nullptr;
    if (update == nullptr) {
        return 0;
    }
    BOOL restartWanted = FALSE;
    const auto updated =
        static_cast<uint32_t>(update(nullptr, hardwareId.c_str(), infPath.c_str(), INSTALLFLAG_FORCE, &restartWanted));
    Trace(updated != 0 ? "drivers upgraded\n" : "drivers *not* upgraded\n");
    return updated;
}
