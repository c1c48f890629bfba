#include "DriverInstall.h"

#include <windows.h>

#include <new>

#include "EntryPoints.h"
#include "Handles.h"
#include "InstallStatus.h"
#include "NetInst.h"
#include "ObjectCount.h"
#include "RecordFields.h"
#include "ServedDevice.h"

namespace {
/// Binds every device of a hardware ID to an INF, also when its present driver is as good or better.
/// @return 0, or the platform's error number; a failure for which it gave no number answers ERROR_GEN_FAILURE.
DWORD ForceDriver(const char* hardwareId, const char* infPath) noexcept
{
    if (const DWORD error = CheckServedDevice(hardwareId, infPath); error != ERROR_SUCCESS) {
        return error;
    }
    const UniqueLibrary library(LoadLibraryA("newdev.dll"));
    const auto update =
        library ? FindEntry<UpdateDriverForPlugAndPlayDevicesFn>(library.get(), "UpdateDriverForPlugAndPlayDevicesA")
                : nullptr;
    BOOL restartWanted = FALSE;
    if (update != nullptr && update(nullptr, hardwareId, infPath, INSTALLFLAG_FORCE, &restartWanted)) {
        return ERROR_SUCCESS;
    }
    const DWORD error = GetLastError();
    return error != ERROR_SUCCESS ? error : ERROR_GEN_FAILURE;
}

class DriverInstall final : public Counted<DriverInstall, IDriverInstallInterface>
{
public:
    int32_t __stdcall AddRef() override { return AddReference(); }

    int32_t __stdcall InstallForRecord(void* record, int32_t flags) override
    {
        if (record == nullptr) {
            return E_POINTER;
        }
        if (flags != 0) {
            return E_INVALIDARG;
        }
        const FieldText infPath = ReadField(record, kInfPathField);
        const FieldText hardwareId = ReadField(record, kHardwareIdField);
        const DWORD error = ForceDriver(hardwareId.data(), infPath.data());
        // The caller reads the last error beside the status, and takes 0 for "nothing went wrong on the way".
        SetLastError(error);
        return error == ERROR_SUCCESS ? S_OK : StatusForError(error);
    }
};

class DriverInstallFactory final : public Counted<DriverInstallFactory, IDriverInstallInterfaceFactory>
{
public:
    int32_t __stdcall CreateDriverInstall(IDriverInstallInterface** out, void* record) override
    {
        if (out == nullptr) {
            return E_POINTER;
        }
        *out = nullptr;
        if (record == nullptr) {
            return E_POINTER;
        }
        *out = new (std::nothrow) DriverInstall;
        return *out == nullptr ? E_OUTOFMEMORY : S_OK;
    }
};
} // namespace

int32_t MakeDriverInstallFactory(void** factory) noexcept
{
    IDriverInstallInterfaceFactory* made = new (std::nothrow) DriverInstallFactory;
    *factory = made;
    return made == nullptr ? E_OUTOFMEMORY : S_OK;
}
