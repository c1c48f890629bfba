#pragma once

#include <windows.h>

#include <optional>
#include <string>
#include <vector>

#include "MachineUse.h"

/// A system as the version calls report it.
struct SystemVersion
{
    const char* wineName;    ///< Wine's name for it, or null when it has none and the registry is set
    const char* version;     ///< "6.2"
    const char* build;       ///< "9200"
    const char* productType; ///< "WinNT", "ServerNT" or "LanmanNT"
};

/// Makes Wine report another system to Morvix.exe for the life of the object. Throws std::runtime_error on a real
/// Windows, which reports itself.
class EmulatedSystem
{
public:
    explicit EmulatedSystem(const SystemVersion& system);
    ~EmulatedSystem();
    EmulatedSystem(const EmulatedSystem&) = delete;
    EmulatedSystem& operator=(const EmulatedSystem&) = delete;

private:
    struct Saved
    {
        std::string key;
        std::string name;
        DWORD type = REG_NONE;
        std::optional<std::string> bytes;
    };
    void Replace(const std::string& key, const std::string& name, const std::optional<std::string>& text);

    std::vector<Saved> m_saved;
};

/// Makes Wine take a library from the program's folder instead of its own for the life of the object. Real Windows does
/// so anyway, and there this changes nothing.
class NativeLibrary
{
public:
    explicit NativeLibrary(std::string library);
    ~NativeLibrary();
    NativeLibrary(const NativeLibrary&) = delete;
    NativeLibrary& operator=(const NativeLibrary&) = delete;

private:
    std::string m_library;
};

/// Removes the settings of the two above that a killed test program has left for Morvix.exe.
void EndEmulations();
