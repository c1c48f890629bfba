#pragma once

#include <cstdint>

/// The installer library's binary interface, and the contract of a library that replaces NetInst.dll.
///
/// Loading. The program loads NetInst.dll from its own folder by full path, once, and never unloads it. The library
/// exports one C function by its plain name. Without the library or that export the run ends at its start.
///
/// Objects. Everything else is reached through plain single-inheritance tables of __stdcall functions in the slot order
/// below. An object begins with one reference, the caller's, and ends when the last one is released; the values of
/// AddRef and Release are ignored. The program releases a factory right after the object was made, before it uses that
/// object. Only status 0 together with an object is a success when something is made; an object that comes with any
/// other status is released and not used. A run makes at most one prober and one driver-install object.
///
/// Threads. The prober is made, used and released on the main thread, on which COM is not initialised, before the
/// install thread exists. The driver-install object is made, used and released on the install thread, normally a member
/// of the multithreaded COM apartment. So calls never overlap, and no object changes threads. A run that ends early, by
/// a restart or a fault, does not release the driver-install object: do not rely on that call.
///
/// Errors. No exception leaves the library. A call may take as long as it needs: the program does not abort it.
///
/// The record is the 1280-byte DriverInstallRecord, zeroed when it is new. Texts in it are 8-bit and NUL-terminated:
/// the family name at 0 (204 bytes), the full path of the INF in upper case at 204 (256 bytes) and the hardware ID at
/// 716 (300 bytes). The library does not keep the address beyond the call, except that the record given to
/// CreateDriverInstall lives as long as the object.

#ifndef _WIN32
#error "NetInst is a Windows interface"
#endif

inline constexpr char kNetInstLibrary[] = "NetInst.dll";
inline constexpr char kNetInstEntryPoint[] = "DllGetClassFactoryObject";
inline constexpr char kSysProberFactoryName[] = "ISysProberInterfaceFactory";
inline constexpr char kDriverInstallFactoryName[] = "IDriverInstallInterfaceFactory";

/// The one status of InstallForRecord that counts as a refused driver: the device's result is FAILURE even when a
/// driver file of the family is there, the dialog says that a driver could not be installed, and a package can fail
/// because of it.
inline constexpr uint32_t kNetInstRefused = 0xE0000207;
/// The status for a device that is not present. Like every other failure it is only traced: the result then says
/// whether a driver file of the family exists.
inline constexpr uint32_t kNetInstNotThere = 0xE000020B;

/// Below HKEY_LOCAL_MACHINE, in the 64-bit view: where the library records, as a REG_DWORD 1, that a binding takes
/// effect only after a restart. A refused driver needs none, whatever the system asks for. The library deletes the
/// value when a system is identified, so it applies to the last run only.
inline constexpr char kNetInstKey[] = R"(SOFTWARE\Norda\NetInst)";
inline constexpr char kNetInstRestartValue[] = "RestartNeeded";

// These tables have no virtual destructor: a destructor would take a slot, and objects end through Release.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"

/// Identifies the system.
struct ISysProberInterface
{
    /// Writes the system's family name into `record`, touches nothing else of it, and deletes kNetInstRestartValue. The
    /// names are "Windows Vista" (every 6.x and later), "Windows Whistler" (5.1 and 5.2), "Windows 2000", "Windows
    /// Millenium", "Windows 98" and "Windows NT".
    /// @return in the low 32 bits the status: 0 for success, 0x80640010, 0x80640011 or 0x80640013 for a system or
    ///         machine that cannot be served. The high 32 bits are ignored.
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
    /// Binds the present devices of the record's hardware ID to the record's INF, also when their driver is as good or
    /// better. Called once for each device that found an INF. Asks the user nothing when the process's set-up
    /// functions are non-interactive (SetupGetNonInteractiveMode) or its windows cannot be seen: what would need an
    /// answer fails.
    /// @param flags  0.
    /// @return 0, or any positive status, when the driver is bound and runs, or when only a restart can show whether it
    ///         runs: then kNetInstRestartValue is recorded;
    ///         kNetInstRefused when the system refused the driver, whatever its reason; kNetInstNotThere when no
    ///         such device is present. Any other negative status means that the call was wrong in itself.
    ///         The caller reads the thread's last error right after the call. After success it is 0: with
    ///         another value the program does not check whether the machine boots over the device. After a failure it
    ///         is the system's own reason.
    virtual int32_t __stdcall InstallForRecord(void* record, int32_t flags) = 0;
};

struct IDriverInstallInterfaceFactory
{
    /// @param record  The run's record, with the family name in it.
    virtual int32_t __stdcall CreateDriverInstall(IDriverInstallInterface** out, void* record) = 0;
    virtual int32_t __stdcall Release() = 0;
};

#pragma GCC diagnostic pop

/// Type of the export `DllGetClassFactoryObject`.
/// @param factoryName  One of the two names above, compared exactly.
/// @param factory      Receives the factory with one reference, null on failure.
/// @return 0 on success.
using DllGetClassFactoryObjectFn = int32_t(__stdcall*)(const char* factoryName, void** factory);
