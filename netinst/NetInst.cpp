#include "NetInst.h"

#include <windows.h>

#include <cstring>

#include "DriverInstall.h"
#include "SysProber.h"

/// Hands out the class factory called `factoryName` (exact spelling) with one reference.
/// @param factory  Receives the factory; null on every failure.
/// @return 0; 0x80004003 for a null argument, 0x80040111 for a name that this library does not know, 0x8007000E when
///         memory ran out.
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
