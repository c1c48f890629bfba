#include "ISCSISupport.h"

#include <string>

#include "EntryPoints.h"
#include "Handles.h"
#include "Helper.h"
#include "ISCSIRules.h"
#include "OSVersion.h"
#include "OrvDebug.h"
#include "SettingTrace.h"
#include "WmiQuery.h"

namespace {
// The iSCSI library's record about the initiator. Declared here because the compiler's header has it for 6.0 and later
// only; earlier systems have the library too, once an initiator is installed.
struct IScsiVersionInfo
{
    ULONG majorVersion;
    ULONG minorVersion;
    ULONG buildNumber;
};
// Returns 0 for success.
using GetIScsiVersionInformationFn = ULONG(WINAPI*)(IScsiVersionInfo* versionInfo);

constexpr char kScsiAdapterClass[] = R"(SYSTEM\CurrentControlSet\Control\Class\{4D36E97B-E325-11CE-BFC1-08002BE10318})";
constexpr char kInitiatorDeviceId[] = R"(root\iscsiprt)";
constexpr char kDumpDriverValue[] = "DumpMiniPort";
constexpr char kDumpDriver[] = "iSCSDump.sys";

bool IsInitiator(const COrvRegKey& classKey, const COrvString& controller)
{
    COrvRegKey key;
    COrvString deviceId;
    return key.Open(classKey.GetHKey(), controller, kForReading) && key.GetValue("MatchingDeviceId", deviceId) &&
           deviceId.CompareI(kInitiatorDeviceId);
}

bool AskInitiatorVersion(InitiatorVersion& version)
{
    const UniqueLibrary library(LoadLibraryA("iscsidsc.dll"));
    if (!library) {
        OrvTrace().Print("CISCSISupport::isTheiSCSIPatchInstalled LoadLibrary of iscsidsc.dll failed - %d",
                         static_cast<int>(GetLastError()));
        return false;
    }
    const auto getVersion = FindEntry<GetIScsiVersionInformationFn>(library.get(), "GetIScsiVersionInformation");
    if (getVersion == nullptr) {
        OrvTrace().Print(
            "CISCSISupport::isTheiSCSIPatchInstalled GetProcAddress of GetIScsiVersionInformation failed - %d",
            static_cast<int>(GetLastError()));
        return false;
    }
    IScsiVersionInfo info{};
    const ULONG status = getVersion(&info);
    if (status != 0) {
        OrvTrace().Print("CISCSISupport::isTheiSCSIPatchInstalled GetIScsiVersionInformation failed - Status - %d",
                         static_cast<int>(status));
        return false;
    }
    OrvTrace().Print("versionInfo - BuildNumber - %d, MajorVersion - %d, MinorVersion - %d",
                     static_cast<int>(info.buildNumber), static_cast<int>(info.majorVersion),
                     static_cast<int>(info.minorVersion));
    version = {.major = info.majorVersion, .minor = info.minorVersion, .build = info.buildNumber};
    return true;
}
} // namespace

CISCSISupport::CISCSISupport()
{
    const COSVersion version;
    m_system = version.GetOSCode();
    m_facts = version.Facts();
}

CISCSISupport::CISCSISupport(OSCode system, const SystemFacts& facts) : m_system(system), m_facts(facts) {}

bool CISCSISupport::IsiSCSISupported(bool& rightOS, bool& patchInstalled, bool& initiatorKeyPresent,
                                     bool& crashDumpEnabled) const
{
    return TracedISCSICheck("IsiSCSISupported", [&] {
        rightOS = isTheRightiSCSIOS();
        patchInstalled = isTheiSCSIPatchInstalled();
        initiatorKeyPresent = isTheiSCSIInitiatorKeyPresent();
        crashDumpEnabled = IsCrashDumpEnabled();
        return rightOS && patchInstalled && initiatorKeyPresent;
    });
}

bool CISCSISupport::isTheRightiSCSIOS() const
{
    return TracedISCSICheck("isTheRightiSCSIOS", [this] { return CanBootOverISCSI(m_system, m_facts); });
}

bool CISCSISupport::isTheiSCSIPatchInstalled() const
{
    return TracedISCSICheck("isTheiSCSIPatchInstalled", [] {
        InitiatorVersion version;
        return AskInitiatorVersion(version) && IsInitiatorRecentEnough(version);
    });
}

bool CISCSISupport::GetIscsiInitiatorKey(COrvRegKey& key, InitiatorKeyAccess access) const
{
    return TracedISCSICheck("GetIscsiInitiatorKey", [&key, access] {
        key.Close();
        COrvRegKey classKey;
        if (!classKey.Open(HKEY_LOCAL_MACHINE, kScsiAdapterClass, kForReading)) {
            return false;
        }
        COrvString controller;
        while (classKey.EnumSubKey(controller)) {
            if (IsInitiator(classKey, controller)) {
                return key.Open(classKey.GetHKey(), controller + COrvString(R"(\Parameters)"),
                                access == InitiatorKeyAccess::ReadWrite);
            }
        }
        return false;
    });
}

bool CISCSISupport::isTheiSCSIInitiatorKeyPresent() const
{
    return TracedISCSICheck("isTheiSCSIInitiatorKeyPresent", [this] {
        COrvRegKey key;
        return GetIscsiInitiatorKey(key);
    });
}

bool CISCSISupport::IsCrashDumpEnabled() const
{
    return TracedISCSICheck("IsCrashDumpEnabled", [this] {
        COrvRegKey key;
        COrvString driver;
        if (!GetIscsiInitiatorKey(key) || !key.GetValue(kDumpDriverValue, driver)) {
            return false;
        }
        if (!(driver == kDumpDriver)) {
            OrvTrace().Print("CISCSISupport::IsCrashDumpEnabled unknown crash dump driver is installed");
            return false;
        }
        return true;
    });
}

bool CISCSISupport::EnableCrashDump() const
{
    return TracedISCSICheck("EnableCrashDump", [this] {
        COrvRegKey key;
        return GetIscsiInitiatorKey(key, InitiatorKeyAccess::ReadWrite) &&
               key.SetValue(kDumpDriverValue, COrvString(kDumpDriver), false);
    });
}

bool CISCSISupport::CheckHotFixInstalled(const COrvString& hotFixId) const
{
    return TracedISCSICheck("CheckHotFixInstalled", [&hotFixId] {
        // An identifier is plain ASCII, whatever the code page.
        const std::wstring wideId(hotFixId.Text().begin(), hotFixId.Text().end());
        return AskWmi(LR"(root\cimv2)", HotFixQuery(wideId).c_str()) == WmiAnswer::Rows;
    });
}

bool CISCSISupport::isTheiSCSIHotFixInstalled() const
{
    return TracedISCSICheck("isTheiSCSIHotFixInstalled", [this] {
        if (ServicePackHasInitiatorHotFix(m_system, m_facts)) {
            OrvTrace().Print(
                "CISCSISupport::isTheiSCSIHotFixInstalled() This is WS03 SP2, no need to call "
                "CheckiSCSIHotFixInstalled()");
            return true;
        }
        return CheckHotFixInstalled(kInitiatorHotFix);
    });
}

bool CISCSISupport::IsTheiSCSIDumpHotFixInstalled_OnW2K3() const
{
    return TracedISCSICheck("IsTheiSCSIDumpHotFixInstalled_OnW2K3",
                            [this] { return CheckHotFixInstalled(kServer2003DumpHotFix); });
}

bool CISCSISupport::IsISCSIDumpHotFixNeeded_OnW2K8() const
{
    return TracedISCSICheck("IsISCSIDumpHotFixNeeded_OnW2K8",
                            [this] { return IsServer2008DumpHotFixNeeded(m_system, m_facts); });
}

bool CISCSISupport::IsTheIscsiServiceRunning() const
{
    OrvTrace().Print("Entering CISCSISupport::IsTheIscsiServiceRunning");
    const bool running = CHelper().IsServiceRunning(kServiceMSiSCSI);
    OrvTrace().Print("Leaving CISCSISupport::IsTheIscsiServiceRunning - return value is: %d", running ? 1 : 0);
    return running;
}
