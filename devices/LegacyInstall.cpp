#include "LegacyInstall.h"

#include <windows.h>

#include <array>

#include "AdapterRegistry.h"
#include "DriverInstallRecord.h"
#include "EnumerationEnd.h"
#include "Handles.h"
#include "InfReader.h"
#include "LegacyCommand.h"
#include "LocationInfo.h"
#include "ProcessLaunch.h"
#include "Trace.h"

namespace {
void InstallInstance(const std::string& instancePath, const std::string& commandLine)
{
    HKEY opened = nullptr;
    if (RegCreateKeyExA(HKEY_LOCAL_MACHINE, R"(Software\Norda\MSI)", 0, nullptr, REG_OPTION_NON_VOLATILE,
                        KEY_ALL_ACCESS, nullptr, &opened, nullptr) != ERROR_SUCCESS) {
        return;
    }
    const UniqueRegKey key(opened);
    Trace("setting RegPCIpath: ", instancePath, "\n");
    // Only the key is a condition: the helper runs also after a write that failed.
    RegSetValueExA(key.get(), "RegPCIpath", 0, REG_EXPAND_SZ, reinterpret_cast<const BYTE*>(instancePath.c_str()),
                   static_cast<DWORD>(instancePath.size() + 1));
    LaunchAppandWait(commandLine);
}

void InstallInstances(HKEY deviceKey, const std::string& keyPath, const std::string& commandLine)
{
    EnumerationEnd end;
    for (DWORD index = 0;; ++index) {
        std::array<char, MAX_PATH> name{};
        DWORD length = name.size();
        const LSTATUS status =
            RegEnumKeyExA(deviceKey, index, name.data(), &length, nullptr, nullptr, nullptr, nullptr);
        if (end.ReachedWith(status)) {
            return;
        }
        if (status == ERROR_SUCCESS) {
            InstallInstance(CutToPathLimit(keyPath + "\\" + name.data(), IsSystemLeadByte), commandLine);
        }
    }
}
} // namespace

int Win98Install(const std::string& infPath, const std::string& hardwareId)
{
    Trace("Enter -> Win98Install");
    SetCurrentDirectoryA(DriveAndDirectoryOf(LocationInfo.programName, IsSystemLeadByte).c_str());
    const std::string matchedId(TextIn(matchedHardwareId));
    Trace("g_98key: ", matchedId, "\n");
    const std::string commandLine = LegacyCommandLine(matchedId, infPath, IsSystemLeadByte);

    const std::string keyPath = CutToPathLimit("Enum\\" + hardwareId, IsSystemLeadByte);
    Trace("opening registry key to enumerate: ", keyPath, "\n");
    if (const UniqueRegKey deviceKey = OpenMachineKey(keyPath, KEY_ENUMERATE_SUB_KEYS)) {
        InstallInstances(deviceKey.get(), keyPath, commandLine);
    }
    Trace("Exit -> Win98Install");
    return 0;
}
