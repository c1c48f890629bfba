#include "NetInstLibrary.h"

#include <windows.h>

#include <string>

#include "EntryPoints.h"
#include "Handles.h"
#include "LocationInfo.h"
#include "Trace.h"

namespace {
// By full path: an elevated program takes this library from its own directory and from nowhere else.
DllGetClassFactoryObjectFn FindFactoryExport(uint32_t& status)
{
    const std::string path = LocationInfo.setupDir + "\\" + kNetInstLibrary;
    UniqueLibrary library(LoadLibraryA(path.c_str()));
    const auto entry = library ? FindEntry<DllGetClassFactoryObjectFn>(library.get(), kNetInstEntryPoint) : nullptr;
    if (entry == nullptr) {
        const DWORD error = GetLastError();
        status = static_cast<uint32_t>(error == ERROR_SUCCESS ? E_FAIL : HRESULT_FROM_WIN32(error));
        Trace("unable to load: ", path, "\n");
        return nullptr;
    }
    // Stays loaded: the objects that it hands out live in it.
    static_cast<void>(library.release());
    return entry;
}

template <class Factory>
UniqueNetInst<Factory> GetFactory(const char* name, uint32_t& status)
{
    const DllGetClassFactoryObjectFn getFactory = FindFactoryExport(status);
    if (getFactory == nullptr) {
        return nullptr;
    }
    void* factory = nullptr;
    status = static_cast<uint32_t>(getFactory(name, &factory));
    if (status != 0 || factory == nullptr) {
        status = status == 0 ? static_cast<uint32_t>(E_NOINTERFACE) : status;
        return nullptr;
    }
    return UniqueNetInst<Factory>(static_cast<Factory*>(factory));
}

// A library that reports success must have handed out an object, and the other way round.
template <class Interface>
UniqueNetInst<Interface> TakeObject(Interface* object, int32_t result, uint32_t& status)
{
    status = static_cast<uint32_t>(result);
    if (status == 0 && object == nullptr) {
        status = static_cast<uint32_t>(E_NOINTERFACE);
    }
    return UniqueNetInst<Interface>(status == 0 ? object : nullptr);
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
