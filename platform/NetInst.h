#pragma once

#include <cstdint>

/// The installer library's binary interface. NetInst.dll exports one C function that hands out class factories by name;
/// everything else is reached through plain single-inheritance tables of __stdcall functions in the slot order below.
/// The record handed through is the 1280-byte DriverInstallRecord, whose layout both sides know.

#ifndef _WIN32
#error "NetInst is a Windows interface"
#endif

inline constexpr char kNetInstLibrary[] = "NetInst.dll";
inline constexpr char kNetInstEntryPoint[] = "DllGetClassFactoryObject";
inline constexpr char kSysProberFactoryName[] = "ISysProberInterfaceFactory";
inline constexpr char kDriverInstallFactoryName[] = "IDriverInstallInterfaceFactory";

/// Below HKEY_LOCAL_MACHINE, in the 64-bit view: where the library records, as a REG_DWORD 1, that a binding takes
/// effect only after a restart. The library deletes the value when a system is identified, so it speaks of the last run
/// only.
inline constexpr char kNetInstKey[] = R"(SOFTWARE\Norda\NetInst)";
inline constexpr char kNetInstRestartValue[] = "RestartNeeded";

// These tables have no virtual destructor: a destructor would take a slot, and objects end through Release.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"

/// Finds out what system this is.
struct ISysProberInterface
{
    /// Writes the system's family name at the start of `record`; the low 32 bits of the result are the status, 0 for
    /// success, 0x80640010, 0x80640011 or 0x80640013 for a system or machine that cannot be served.
    virtual int64_t __stdcall IdentifySystem(void* record) = 0;
    virtual int32_t __stdcall Release() = 0;
};

struct ISysProberInterfaceFactory
{
    virtual int32_t __stdcall CreateSysProber(ISysProberInterface** out) = 0;
    virtual int32_t __stdcall Release() = 0;
};

/// Binds devices to drivers.
struct IDriverInstallInterface
{
    virtual int32_t __stdcall AddRef() = 0;
    virtual int32_t __stdcall Release() = 0;
    /// Binds the record's hardware ID to the record's INF. `flags` is 0.
    /// @return 0 or a positive status for success, else a negative one (a set-up error 0xE000.... or an HRESULT).
    virtual int32_t __stdcall InstallForRecord(void* record, int32_t flags) = 0;
};

struct IDriverInstallInterfaceFactory
{
    virtual int32_t __stdcall CreateDriverInstall(IDriverInstallInterface** out, void* record) = 0;
    virtual int32_t __stdcall Release() = 0;
};

#pragma GCC diagnostic pop

/// Type of the export `DllGetClassFactoryObject`: 0 on success with the factory in `factory`.
using DllGetClassFactoryObjectFn = int32_t(__stdcall*)(const char* factoryName, void** factory);
