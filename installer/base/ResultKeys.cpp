#include "ResultKeys.h"

#include <windows.h>

#include <algorithm>
#include <cstring>

#include "Handles.h"
#include "OrvSecure.h"
#include "RunState.h"
#include "Trace.h"

namespace {
void SetText(HKEY key, const char* name, DWORD type, const std::string& text)
{
    RegSetValueExA(key, name, 0, type, reinterpret_cast<const BYTE*>(text.c_str()),
                   static_cast<DWORD>(text.size() + 1));
}

bool RestartFollows()
{
    return RunState.windows98Run || RunState.windowsMeRun || RunState.fcoeRestart;
}

// The stored length of "Reboot" is that of the result text, not of "Yes": readers stop at the terminator and see "Yes".
// The bytes after it are zeros.
void SetReboot(HKEY key, const std::string& result)
{
    std::string data = "Yes";
    const size_t bytes = result.size() + 1;
    data.resize(std::max(bytes, data.size() + 1));
    RegSetValueExA(key, kRebootValue, 0, REG_SZ, reinterpret_cast<const BYTE*>(data.data()), static_cast<DWORD>(bytes));
}

void SetVersions(HKEY key, char* driverType, size_t driverTypeBytes, const std::string& version)
{
    if (char* underscore = std::strrchr(driverType, '_'); underscore != nullptr) {
        underscore[1] = '\0';
    }
    OrvSafeCat("ResultKeys", __LINE__, driverType, driverTypeBytes, "Version");
    SetText(key, driverType, REG_SZ, version);
    SetText(key, kVersionValue, REG_SZ, version);
}

UniqueRegKey OpenBasedrivers()
{
    HKEY key = nullptr;
    if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, kBasedriversKey, 0, KEY_ALL_ACCESS, &key) != ERROR_SUCCESS) {
        return nullptr;
    }
    return UniqueRegKey(key);
}
} // namespace

void DeleteRebootNeeded()
{
    if (const UniqueRegKey key = OpenBasedrivers()) {
        RegDeleteValueA(key.get(), kRebootNeededValue);
    }
}

void SetRebootNeeded()
{
    if (const UniqueRegKey key = OpenBasedrivers()) {
        const DWORD needed = 1;
        RegSetValueExA(key.get(), kRebootNeededValue, 0, REG_DWORD, reinterpret_cast<const BYTE*>(&needed),
                       sizeof(needed));
    }
}

void PostResultToRegistry(const std::string& result, char* driverType, size_t driverTypeBytes,
                          const std::string& version)
{
    Trace("Enter -> PostResultToRegistry");
    Trace("Installation result is ->");
    Trace(result);
    Trace("The type of driver being installed is ->");
    Trace(driverType);
    Trace("The driver version being installed is ->");
    Trace(version);

    HKEY opened = nullptr;
    if (RegCreateKeyA(HKEY_LOCAL_MACHINE, kBasedriversKey, &opened) == ERROR_SUCCESS) {
        const UniqueRegKey key(opened);
        SetText(key.get(), driverType, REG_EXPAND_SZ, result);
        if (RestartFollows()) {
            SetReboot(key.get(), result);
        }
        if (result == kResultSuccess) {
            SetVersions(key.get(), driverType, driverTypeBytes, version);
        }
        // The first result is always stored; a later one only when it is worse.
        if (!RunState.resultAlreadyPosted || result == kResultFailure) {
            Trace("First time calling PostResultToRegistry() or FAILURE found!");
            SetText(key.get(), kInstallValue, REG_EXPAND_SZ, result);
        }
    }
    RunState.resultAlreadyPosted = true;
    Trace("Exit -> PostResultToRegistry");
}
