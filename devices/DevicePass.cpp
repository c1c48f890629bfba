#include "DevicePass.h"

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "AdapterRegistry.h"
#include "AnswerReuse.h"
#include "DeviceInstall.h"
#include "DevicePassState.h"
#include "EnumerationEnd.h"
#include "Handles.h"
#include "InfSearch.h"
#include "NordaNetworkDevice.h"
#include "OrvSecure.h"
#include "PathCase.h"
#include "SearchIds.h"
#include "SystemFamilies.h"
#include "Trace.h"

namespace {
constexpr char kThisFile[] = "DevicePass";
constexpr std::size_t kKeyNameChars = 256;
constexpr std::size_t kInfPathChars = 260;

/// One device on its way through the search passes.
struct DeviceSearch
{
    std::string deviceId; ///< device key name in full
    std::string searchId; ///< what the current pass looks for
    std::vector<std::string> directories;
    std::vector<std::string> excludes;
};

/// An INF path of more than 255 characters does not fit into the record: its field is then empty, and the install goes
/// on with that.
void RecordMatch(DriverInstallRecord& record, const std::string& deviceId, const char* infPath)
{
    Trace("!!FOUND INF MATCH\n");
    OrvSafeCopy(kThisFile, __LINE__, record.hardwareId.data(), record.hardwareId.size(), "PCI\\");
    OrvSafeCat(kThisFile, __LINE__, record.hardwareId.data(), record.hardwareId.size(), deviceId.c_str());
    OrvSafeCopy(kThisFile, __LINE__, record.infPath.data(), record.infPath.size(), infPath);
    DevicePassState.deviceMatched = 1;

    MakePathUpperCase(record.infPath);
    if (TextIn(record.infPath).find("QDATDMA.INF") != std::string_view::npos) {
        DevicePassState.qdatInstalled = 1;
        Trace("QDATINSTALLED\n");
    }
}

/// @return true when an INF of one of the directories lists the current search ID; the record then names it.
bool SearchDirectories(const DeviceSearch& search, DriverInstallRecord& record)
{
    for (const std::string& directory : search.directories) {
        Trace(directory);
        std::array<char, kInfPathChars> infPath{};
        if (GetInfFile(search.searchId.c_str(), directory, record, infPath.data(), search.excludes)) {
            RecordMatch(record, search.deviceId, infPath.data());
            return true;
        }
    }
    return false;
}

/// @return true when an INF was found in one of the passes.
bool FindInf(DeviceSearch& search, DriverInstallRecord& record)
{
    for (int pass = kFirstSearchPass;; ++pass) {
        if (SearchDirectories(search, record)) {
            return true;
        }
        if (pass == kLastSearchPass) {
            return false;
        }
        // A pass that is skipped repeats the search with the ID as it is.
        if (std::optional<std::string> next = SearchIdForPass(search.deviceId, pass + 1)) {
            search.searchId = *std::move(next);
            Trace(search.searchId);
            Trace("Pass ", std::to_string(pass + 1));
        }
    }
}

bool MatchDevice(const std::string& deviceId, DriverInstallRecord& record)
{
    Trace("device: ", deviceId, "\n");
    DeviceSearch search{.deviceId = deviceId, .searchId = deviceId, .directories = {}, .excludes = {}};
    GetInfDirs(search.directories, search.excludes);
    return FindInf(search, record);
}

void WalkDevices(HKEY key, const SystemFamily& family, DriverInstallRecord& record,
                 IDriverInstallInterface* driverInstall, HWND dialog)
{
    // Every device is searched for in the same files.
    AnswerReuse reuse;
    EnumerationEnd end;
    for (DWORD index = 0;; ++index) {
        std::array<char, kKeyNameChars> buffer{};
        DWORD length = kKeyNameChars;
        if (end.ReachedWith(RegEnumKeyExA(key, index, buffer.data(), &length, nullptr, nullptr, nullptr, nullptr))) {
            return;
        }
        // After an error other than "no more items" the name is what the cleared buffer holds, treated like any name.
        const std::string deviceId(TextIn(buffer));
        reuse.BeginDevice();
        if (IsNordaNetworkDevice(deviceId, std::string(family.name)) && MatchDevice(deviceId, record)) {
            InstallMatchedDevice(family.route, record, deviceId, driverInstall, dialog);
        }
    }
}

uint32_t RunPass(DriverInstallRecord& record, IDriverInstallInterface* driverInstall, HWND dialog)
{
    const std::optional<SystemFamily> family = FindSystemFamily(TextIn(record.osFamily));
    if (!family) {
        return kDevicePassFailed;
    }
    const UniqueRegKey key = OpenMachineKey(family->pciKey, KEY_ENUMERATE_SUB_KEYS);
    if (!key) {
        return kDevicePassFailed;
    }
    Trace("************ enumerating registry for devices...\n");
    WalkDevices(key.get(), *family, record, driverInstall, dialog);
    Trace("************ finished enumerating registry for devices\n");
    return 0;
}
} // namespace

uint32_t EnumerateRegistryForPCIDevices(DriverInstallRecord& record, IDriverInstallInterface* driverInstall,
                                        HWND dialog)
{
    Trace("Enter -> EnumerateRegistryForPCIDevices()\n");
    const uint32_t result = RunPass(record, driverInstall, dialog);
    Trace("Exit -> EnumerateRegistryForPCIDevices()\n");
    return result;
}
