#include "DriverInstall.h"

#include <windows.h>

#include <new>

#include "DriverBinding.h"
#include "NetInst.h"
#include "ObjectCount.h"
#include "RecordFields.h"

namespace {
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
        const BindingAnswer answer = BindDriver(hardwareId.data(), infPath.data());
        // The caller also reads the last error and takes 0 to mean that nothing failed on the way.
        SetLastError(answer.lastError);
        return answer.status;
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
