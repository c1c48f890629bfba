#include "DevicePass.h"

#include <windows.h>

#include <array>
#include <cstddef>
#include <optional>
#include <string>

#include "AdapterRegistry.h"
#include "DevicePassState.h"
#include "DeviceSearch.h"
#include "EnumerationEnd.h"
#include "Handles.h"
#include "InstallerSearch.h"
#include "KeptAnswers.h"
#include "NordaNetworkDevice.h"
#include "OSVersion.h"
#include "OrvSecure.h"
#include "PlatformKit.h"
#include "SearchIds.h"
#include "ServedFamilies.h"
#include "Trace.h"

namespace {
constexpr char kThisFile[] = "DevicePass";
constexpr std::size_t kKeyNameChars = 256;

void RecordMatch(DriverInstallRecord& record, const std::string& deviceId, const DeviceMatch& match)
{
    OrvSafeCopy(kThisFile, __LINE__, record.hardwareId.data(), record.hardwareId.size(), "PCI\\");
    OrvSafeCat(kThisFile, __LINE__, record.hardwareId.data(), record.hardwareId.size(), deviceId.c_str());
    // The copy reports a path that does not fit, for which the search has none to record; the field is then empty.
    const std::string& infPath = match.recordPath.empty() ? match.infPath : match.recordPath;
    OrvSafeCopy(kThisFile, __LINE__, record.infPath.data(), record.infPath.size(), infPath.c_str());
    DevicePassState.deviceMatched = true;
    if (match.isDmaEngine) {
        DevicePassState.qdatInstalled = true;
    }
}

/// @return true when an INF lists the device; the record then names it.
bool MatchDevice(KitSource& source, const std::string& deviceId, DriverInstallRecord& record)
{
    InstallerLog log;
    const KitSearch search = SearchOfThisRun(source, log, COSVersion().GetOSCode(), FamilyOf(record));
    const DeviceMatch match = SearchForDevice(search, deviceId);
    switch (match.verdict) {
        case SearchVerdict::Matched:
            RecordMatch(record, deviceId, match);
            return true;
        case SearchVerdict::NoInf:
            return false;
        case SearchVerdict::Fault:
            // Throws: nothing in a run handles such a device, by design.
            static_cast<void>(SearchIdForPass(deviceId, match.pass));
    }
    return false;
}

/// What a walk needs for each device.
struct Walk
{
    KitSource& source;
    const ServedFamily& family;
    DriverInstallRecord& record;
    IDriverInstallInterface* driverInstall;
    const ReportProgressFn& report;
};

void WalkDevices(HKEY key, const Walk& walk)
{
    EnumerationEnd end;
    for (DWORD index = 0;; ++index) {
        std::array<char, kKeyNameChars> buffer{};
        DWORD length = kKeyNameChars;
        if (end.ReachedWith(RegEnumKeyExA(key, index, buffer.data(), &length, nullptr, nullptr, nullptr, nullptr))) {
            return;
        }
        // After an error other than "no more items" the name is what the cleared buffer holds, treated like any name.
        const std::string deviceId(TextIn(buffer));
        if (IsNordaNetworkDevice(deviceId, std::string(walk.family.name)) &&
            MatchDevice(walk.source, deviceId, walk.record)) {
            InstallMatchedDevice(walk.family.route, walk.record, deviceId, walk.driverInstall, walk.report);
        }
    }
}

uint32_t FindKeyAndWalk(KitSource& source, DriverInstallRecord& record, IDriverInstallInterface* driverInstall,
                        const ReportProgressFn& report)
{
    const std::optional<ServedFamily> family = FindServedFamily(TextIn(record.osFamily));
    if (!family) {
        return kDevicePassFailed;
    }
    const UniqueRegKey key = OpenMachineKey(family->pciKey, KEY_ENUMERATE_SUB_KEYS);
    if (!key) {
        return kDevicePassFailed;
    }
    Trace("************ enumerating registry for devices...\n");
    WalkDevices(key.get(), {source, *family, record, driverInstall, report});
    Trace("************ finished enumerating registry for devices\n");
    return 0;
}
} // namespace

uint32_t RunDevicePass(DriverInstallRecord& record, IDriverInstallInterface* driverInstall,
                       const ReportProgressFn& report)
{
    // Every device is searched for in the same files.
    PlatformKit kit;
    KeptAnswers answers(kit);
    return RunDevicePassOver(answers, record, driverInstall, report);
}

uint32_t RunDevicePassOver(KitSource& source, DriverInstallRecord& record, IDriverInstallInterface* driverInstall,
                           const ReportProgressFn& report)
{
    Trace("Enter -> EnumerateRegistryForPCIDevices()\n");
    const uint32_t result = FindKeyAndWalk(source, record, driverInstall, report);
    Trace("Exit -> EnumerateRegistryForPCIDevices()\n");
    return result;
}
