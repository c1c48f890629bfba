#include "Adapter.h"

#include "Environment.h"
#include "RegistryKeys.h"

namespace {
constexpr char kPciKey[] = R"(SYSTEM\CurrentControlSet\Enum\PCI)";
constexpr char kClassKey[] = R"(SYSTEM\CurrentControlSet\Control\Class)";
constexpr char kNetClass[] = "{4D36E972-E325-11CE-BFC1-08002BE10318}";

// Most exact first, as the system writes them.
std::vector<std::string> HardwareIds(const std::string& deviceId)
{
    const std::string withoutRevision = deviceId.substr(0, deviceId.find("&REV"));
    const std::string vendorAndDevice = deviceId.substr(0, deviceId.find("&SUBSYS"));
    std::vector<std::string> ids = {"PCI\\" + deviceId};
    if (withoutRevision != deviceId) {
        ids.push_back("PCI\\" + withoutRevision);
    }
    if (vendorAndDevice != withoutRevision) {
        ids.push_back("PCI\\" + vendorAndDevice);
    }
    return ids;
}
} // namespace

Adapter::Adapter(std::string deviceId, const std::vector<std::string>& compatibleIds)
    : m_deviceId(std::move(deviceId)), m_instanceKey(std::string(kPciKey) + "\\" + m_deviceId + "\\3&11583659&0&C8")
{
    SetRegistryText(m_instanceKey, "ClassGUID", kNetClass);
    SetRegistryText(m_instanceKey, "Class", "Net");
    SetRegistryList(m_instanceKey, "HardwareID", HardwareIds(m_deviceId));
    SetRegistryList(m_instanceKey, "CompatibleIDs", compatibleIds);
}

Adapter::~Adapter()
{
    const std::string driver = Driver();
    if (driver != "<none>") {
        DeleteRegistryTree(std::string(kClassKey) + "\\" + driver);
    }
    DeleteRegistryTree(std::string(kPciKey) + "\\" + m_deviceId);
}

std::string Adapter::Driver() const
{
    return ReadRegistryText(m_instanceKey, "Driver");
}

std::string Adapter::Service() const
{
    return ReadRegistryText(m_instanceKey, "Service");
}

std::string Adapter::DriverKey() const
{
    return std::string(kClassKey) + "\\" + Driver();
}

void RemoveSimulatedAdapters()
{
    for (const std::string& device : RegistrySubKeys(kPciKey)) {
        if (device.find("5D1A") == std::string::npos && !device.starts_with("VEN_1E2B") && !device.starts_with("&")) {
            continue;
        }
        const std::string deviceKey = std::string(kPciKey) + "\\" + device;
        for (const std::string& instance : RegistrySubKeys(deviceKey)) {
            const std::string driver = ReadRegistryText(deviceKey + "\\" + instance, "Driver");
            if (driver != "<none>" && !driver.empty()) {
                DeleteRegistryTree(std::string(kClassKey) + "\\" + driver);
            }
        }
        DeleteRegistryTree(deviceKey);
    }
}
