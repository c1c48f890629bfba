#include "NetInstLibrary.h"

#include <windows.h>

#include <string>

#include "EntryPoints.h"
#include "Handles.h"
#include "LocationInfo.h"
#include "SystemLibrary.h"
#include "Trace.h"

namespace {
/// A replacement for NetInst.dll may import setupapi.dll, which Windows XP and Server 2003 do not know as one of the
/// system's own: the loader would take a file of that name from the program's folder. Once the system's is loaded, the
/// name refers to that one.
void KeepSystemSetupLibraryLoaded()
{
    static const HMODULE library = LoadSystemLibrary("setupapi.dll").release();
    static_cast<void>(library);
}

// By full path: the search for libraries is bypassed.
DllGetClassFactoryObjectFn FindFactoryExport(uint32_t& status)
{
    KeepSystemSetupLibraryLoaded();
    const std::string path = LocationInfo.setupDir + "\\" + kNetInstLibrary;
    UniqueLibrary library(LoadLibraryA(path.c_str()));
    const auto entry = library ? FindEntry<DllGetClassFactoryObjectFn>(library.get(), kNetInstEntryPoint) : nullptr;
    if (entry == nullptr) {
        const DWORD error = GetLastError();
        status = static_cast<uint32_t>(error == ERROR_SUCCESS ? E_FAIL : HRESULT_FROM_WIN32(error));
        Trace("unable to load: ", path, "\n");
        return nullptr;
    }
    // Stays loaded: the code of its objects is in it.
    static_cast<void>(library.release());
    return entry;
}

// Only a status of 0 is a success, and then there must be an object. An object that comes with another status is
// released.
template <class Interface>
UniqueNetInst<Interface> TakeObject(Interface* object, int32_t result, uint32_t& status)
{
    UniqueNetInst<Interface> owner(object);
    status = static_cast<uint32_t>(result);
    if (status != 0) {
        return nullptr;
    }
    if (!owner) {
        status = static_cast<uint32_t>(E_NOINTERFACE);
    }
    return owner;
}

template <class Factory>
UniqueNetInst<Factory> GetFactory(const char* name, uint32_t& status)
{
    const DllGetClassFactoryObjectFn getFactory = FindFactoryExport(status);
    if (getFactory == nullptr) {
        return nullptr;
    }
    void* factory = nullptr;
    const int32_t result = getFactory(name, &factory);
    return TakeObject(static_cast<Factory*>(factory), result, status);
}
} // namespace

UniqueNetInst<ISysProberInterface> CreateSysProber(uint32_t& status)
{
    const auto factory = GetFactory<ISysProberInterfaceFactory>(kSysProberFactoryName, status);
    if (!factory) {
        return nullptr;
    }
    ISysProberInterface* prober = nullptr;
    const int32_t result = factory->CreateSysProber(&prober);
    return TakeObject(prober, result, status);
}

UniqueNetInst<IDriverInstallInterface> CreateDriverInstall(void* record, uint32_t& status)
{
    const auto factory = GetFactory<IDriverInstallInterfaceFactory>(kDriverInstallFactoryName, status);
    if (!factory) {
        return nullptr;
    }
    IDriverInstallInterface* driverInstall = nullptr;
    const int32_t result = factory->CreateDriverInstall(&driverInstall, record);
    return TakeObject(driverInstall, result, status);
}
