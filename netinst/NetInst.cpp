#include "NetInst.h"

#include <windows.h>

#include <cstring>

#include "DriverInstall.h"
#include "SysProber.h"

/// Returns the class factory named `factoryName` (exact spelling) with one reference.
/// @param factory  Receives the factory; null on every failure.
/// @return 0; 0x80004003 for a null argument, 0x80040111 for an unknown name, 0x8007000E when out of memory.
extern "C" int32_t __stdcall DllGetClassFactoryObject(const char* factoryName, void** factory)
{
    if (factory == nullptr) {
        return E_POINTER;
    }
    *factory = nullptr;
    if (factoryName == nullptr) {
        return E_POINTER;
    }
    if (std::strcmp(factoryName, kSysProberFactoryName) == 0) {
        return MakeSysProberFactory(factory);
    }
    if (std::strcmp(factoryName, kDriverInstallFactoryName) == 0) {
        return MakeDriverInstallFactory(factory);
    }
    return CLASS_E_CLASSNOTAVAILABLE;
}
