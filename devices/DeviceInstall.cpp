#include "DeviceInstall.h"

#include <windows.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>

#include "DevicePassState.h"
#include "DriverUpdate.h"
#include "IScsiAdapter.h"
#include "InfReader.h"
#include "InstallingText.h"
#include "LangString.h"
#include "LegacyInstall.h"
#include "NetCfgInstance.h"
#include "OrvRegKey.h"
#include "OrvString.h"
#include "PostInstall.h"
#include "RecordNames.h"
#include "Trace.h"

namespace {
constexpr char kSourcePathValue[] = "Tavunstl_source_path";
constexpr bool kPlainText = false;

/// What the driver-install interface answered.
struct InterfaceAnswer
{
    int32_t status = 0;
    DWORD lastError = ERROR_SUCCESS;
};

void ReportProgress(const ReportProgressFn& report)
{
    report(InstallingText(LangString(kStringInstalling), TextIn(deviceDescription), kMessageBytes - 1,
                          SystemCharacterRule()));
    Trace("==>installing driver(s)\n");
}

std::string DescribeInstall(const std::string& label, const DriverInstallRecord& record)
{
    return label + std::string(TextIn(record.hardwareId)) + ", " + std::string(TextIn(record.infPath)) + "\n";
}

/// The uninstaller learns from a registry value which INF is being installed. The value exists only during the call,
/// also when that call leaves by an exception. With a key that cannot be opened, writing and deleting fail without a
/// report.
class SourcePathValue
{
public:
    explicit SourcePathValue(const std::string& infPath)
    {
        if (!m_key.Open(HKEY_LOCAL_MACHINE, kBasedriversKey, kForWriting)) {
            m_key.Create(HKEY_LOCAL_MACHINE, kBasedriversKey, kForWriting, kPermanent);
        }
        m_key.SetValue(m_name, COrvString(infPath), kPlainText);
    }
    ~SourcePathValue() { m_key.DeleteValue(m_name); }
    SourcePathValue(const SourcePathValue&) = delete;
    SourcePathValue& operator=(const SourcePathValue&) = delete;

private:
    // Made before the value is, so that deleting the value needs no memory.
    const COrvString m_name{kSourcePathValue};
    COrvRegKey m_key;
};

InterfaceAnswer CallInterface(DriverInstallRecord& record, IDriverInstallInterface* driverInstall)
{
    if (driverInstall == nullptr) {
        // Nothing was installed: an older driver file must not make it look like a success.
        return {.status = static_cast<int32_t>(kNetInstRefused), .lastError = ERROR_INVALID_PARAMETER};
    }
    InterfaceAnswer answer;
    answer.status = driverInstall->InstallForRecord(&record, 0);
    answer.lastError = GetLastError();
    return answer;
}

/// Asks whether the machine boots over the device that was just installed; no further device is asked after one that
/// does. After an install that left an error the device is not asked.
void LookForStorageAdapter(const std::string& deviceId, DWORD installError)
{
    if (DevicePassState.storageAdapterFound || installError != ERROR_SUCCESS) {
        return;
    }
    std::array<char, kInstanceIdChars> instanceId{};
    GetNetCfgInstanceId(deviceId, instanceId);
    IsIScsiAdapter(instanceId.data());
}

void InstallByInterface(DriverInstallRecord& record, const std::string& deviceId,
                        IDriverInstallInterface* driverInstall)
{
    DWORD installError = ERROR_SUCCESS;
    Trace(DescribeInstall("2K/XP install: ", record));
    {
        const SourcePathValue sourcePath{std::string(TextIn(record.infPath))};
        const InterfaceAnswer answer = CallInterface(record, driverInstall);
        installError = answer.lastError;
        if (answer.status < 0 && static_cast<uint32_t>(answer.status) == kNetInstRefused) {
            DevicePassState.unreportedRefusal = true;
            DevicePassState.installFailed = true;
        }
        std::array<char, 256> line{};
        static_cast<void>(std::snprintf(line.data(), line.size(),
                                        " 2K/XP UpdateDriver() returned: %x ---> GetLastError = %x\n",
                                        static_cast<unsigned>(answer.status), static_cast<unsigned>(answer.lastError)));
        Trace(line.data());
    }
    // Whatever the status was.
    PostInstallRegResult(record.infPath);
    LookForStorageAdapter(deviceId, installError);
}
} // namespace

void InstallMatchedDevice(InstallRoute route, DriverInstallRecord& record, const std::string& deviceId,
                          IDriverInstallInterface* driverInstall, const ReportProgressFn& report)
{
    ReportProgress(report);
    const std::string infPath(TextIn(record.infPath));
    const std::string hardwareId(TextIn(record.hardwareId));
    switch (route) {
        case InstallRoute::DriverUpdate:
            Trace(DescribeInstall("ME install: ", record));
            UpdateDriver(infPath, hardwareId);
            break;
        case InstallRoute::DriverInterface:
            InstallByInterface(record, deviceId, driverInstall);
            break;
        case InstallRoute::LegacyInstaller:
            Trace(DescribeInstall("98 install: ", record));
            Win98Install(infPath, hardwareId);
            break;
    }
}
