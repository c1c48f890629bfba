#include "DeviceAcceptance.h"

#include "DriverInstallRecord.h"
#include "NetworkDevices.h"

namespace {
constexpr std::string_view kVendorOnWindows98 = "VEN_5D1A";
}

Acceptance AcceptByName(std::string_view deviceKeyName)
{
    const bool isOurs = deviceKeyName.find(kVendorOnWindows98) != std::string_view::npos;
    return {.verdict = isOurs ? DeviceVerdict::AcceptedByName : DeviceVerdict::OtherVendor, .acceptedId = {}};
}

Acceptance AcceptByIds(const FirstInstance& instance)
{
    if (!instance.isThere) {
        return {.verdict = DeviceVerdict::NoInstance, .acceptedId = {}};
    }
    if (!instance.compatibleIds) {
        return {.verdict = DeviceVerdict::NoCompatibleIds, .acceptedId = {}};
    }
    const std::string_view row = FindAcceptedId({instance.compatibleIds->data(), instance.compatibleIds->size()});
    return {.verdict = row.empty() ? DeviceVerdict::OtherDevice : DeviceVerdict::AcceptedById, .acceptedId = row};
}

Acceptance AcceptDevice(const std::string& deviceKeyName, std::string_view osFamily, DeviceInstances& devices,
                        SearchLog& log)
{
    log.Say("Enter -> IsNordaNetworkDevice()\n");
    if (osFamily == kFamilyWindows98) {
        const Acceptance byName = AcceptByName(deviceKeyName);
        if (byName.IsAccepted()) {
            log.Say("win 98 ");
        }
        // This branch leaves without the exit line.
        return byName;
    }
    const std::string path = R"(SYSTEM\CurrentControlSet\Enum\PCI\)" + deviceKeyName;
    log.Say(path);
    const Acceptance byIds = AcceptByIds(devices.FirstInstanceOf(path));
    if (byIds.IsAccepted()) {
        log.Say("Norda Network Adapter found!");
    }
    log.Say("Exit -> IsNordaNetworkDevice()\n");
    return byIds;
}
