#include "SysProber.h"

#include <windows.h>

#include <new>

#include "NetInst.h"
#include "ObjectCount.h"
#include "RecordFields.h"
#include "RestartRecord.h"
#include "SystemFamily.h"

namespace {
SystemFamily FamilyOfThisSystem() noexcept
{
    OSVERSIONINFOA version{};
    version.dwOSVersionInfoSize = sizeof(version);
    if (!GetVersionExA(&version)) {
        return {};
    }
    return FamilyForVersion(version.dwPlatformId, version.dwMajorVersion, version.dwMinorVersion);
}

class SysProber final : public Counted<SysProber, ISysProberInterface>
{
public:
    int64_t __stdcall IdentifySystem(void* record) override
    {
        if (record == nullptr) {
            return static_cast<uint32_t>(E_POINTER);
        }
        // A new run begins: the record of an earlier one does not apply to it.
        ForgetRestartNeeded();
        const SystemFamily family = FamilyOfThisSystem();
        WriteField(record, kFamilyField, family.name);
        return family.status;
    }
};

class SysProberFactory final : public Counted<SysProberFactory, ISysProberInterfaceFactory>
{
public:
    int32_t __stdcall CreateSysProber(ISysProberInterface** out) override
    {
        if (out == nullptr) {
            return E_POINTER;
        }
        *out = new (std::nothrow) SysProber;
        return *out == nullptr ? E_OUTOFMEMORY : S_OK;
    }
};
} // namespace

int32_t MakeSysProberFactory(void** factory) noexcept
{
    ISysProberInterfaceFactory* made = new (std::nothrow) SysProberFactory;
    *factory = made;
    return made == nullptr ? E_OUTOFMEMORY : S_OK;
}
