// What is installed and what is being debugged, as the registry says.
#include "Helper.h"

#include "HelperTrace.h"
#include "OrvDebug.h"
#include "OrvRegKey.h"

namespace {
// The trailing backslash is part of the name that is opened.
constexpr char kTernKey[] = R"(SOFTWARE\NORDA\Network_Services\TERN\)";
constexpr char kProductKey[] = R"(SOFTWARE\NORDA\Network_Services\ORV2)";
constexpr char kDebugKey[] = R"(SOFTWARE\NORDA\Network_Services\Debug)";

struct Component
{
    const char* operation;
    const char* value;
    // The component's name in the text about its value, and in the text for "not installed".
    const char* valueName;
    const char* name;
};
constexpr Component kDcb{"IsDcbInstalled", "InstalledTERN_DCB", "DCB", "DCB"};
constexpr Component kFcoe{"IsFcoeInstalled", "InstalledTERN_FCOE", "Fcoe", "fcoe"};
constexpr Component kTern{"IsTernInstalled", "InstalledTERN", "TERN", "TERN"};
constexpr Component kZor{"IsZorInstalled", "InstalledTERN_ZOR", "ZOR", "ZOR"};
// The iSCSI test deliberately says "fcoe" in both of its texts.
constexpr Component kIscsi{"IsIscsiInstalled", "InstalledTERN_ISCSI", "Fcoe", "fcoe"};

bool IsComponentInstalled(const Component& component)
{
    const HelperTrace trace(component.operation);
    COrvRegKey key;
    if (!key.Open(HKEY_LOCAL_MACHINE, kTernKey, kForReading)) {
        OrvTrace().Print("%s() - Unable to open the TERN registry key - exiting", component.operation);
        return false;
    }
    COrvString flag;
    if (!key.GetValue(component.value, flag)) {
        OrvTrace().Print("%s() - Unable to open the %s installation status registry value - exiting",
                         component.operation, component.valueName);
        return false;
    }
    if (!(flag == "1")) {
        OrvTrace().Print("%s() - %s was not installed - exiting", component.operation, component.name);
        return false;
    }
    return true;
}
} // namespace

bool CHelper::IsDcbInstalled()
{
    return IsComponentInstalled(kDcb);
}
bool CHelper::IsFcoeInstalled()
{
    return IsComponentInstalled(kFcoe);
}
bool CHelper::IsTernInstalled()
{
    return IsComponentInstalled(kTern);
}
bool CHelper::IsZorInstalled()
{
    return IsComponentInstalled(kZor);
}
bool CHelper::IsIscsiInstalled()
{
    return IsComponentInstalled(kIscsi);
}

bool CHelper::IsDebugEnbled()
{
    const HelperTrace trace("IsDebugEnbled");
    COrvRegKey key;
    if (!key.Open(HKEY_LOCAL_MACHINE, kProductKey, kForReading)) {
        // The text deliberately names another key.
        OrvTrace().Print("IsDebugEnbled() - Unable to open the TERN registry key - exiting");
        return false;
    }
    DWORD debugging = 0;
    if (!key.GetValue("Debugging", debugging)) {
        OrvTrace().Print("IsDebugEnbled() - Unable to open the debug registry value - exiting");
        return false;
    }
    if (debugging != 1) {
        return false;
    }
    OrvTrace().Print("IsDebugEnbled() - debugging is enabled - exiting");
    return true;
}

bool CHelper::IsSettingDebugable(const COrvString& name, DWORD& value)
{
    // The exit line names the other operation, as it always has.
    const HelperTrace trace("IsSettingDebugable", "IsDebugEnbled");
    if (!IsDebugEnbled()) {
        OrvTrace().Print("IsSettingDebugable() - debugging is not turned on - exiting");
        return false;
    }
    COrvRegKey key;
    key.Open(HKEY_LOCAL_MACHINE, kDebugKey, kForReading);
    value = 0;
    return key.GetValue(name, value);
}

bool CHelper::GetDebugString(const COrvString& name, COrvString& value)
{
    const HelperTrace trace("GetDebugString");
    if (!IsDebugEnbled()) {
        OrvTrace().Print("GetDebugString() - debugging is not turned on - exiting");
        return false;
    }
    COrvRegKey key;
    key.Open(HKEY_LOCAL_MACHINE, kDebugKey, kForReading);
    return key.GetValue(name, value);
}

bool CHelper::IsDebugFeatureOn()
{
    COrvRegKey key;
    key.Open(HKEY_LOCAL_MACHINE, kTernKey, kForReading);
    DWORD feature = 0;
    DWORD bytes = sizeof(feature);
    // Read as bytes: reading a number would trace.
    return key.GetRegType("DebugFeature") == REG_DWORD &&
           key.GetValue("DebugFeature", reinterpret_cast<BYTE*>(&feature), bytes) && feature == 1;
}

int CHelper::GetInstalledLanguage(COrvString& language)
{
    COrvRegKey key;
    key.Open(HKEY_LOCAL_MACHINE, kProductKey, kForReading);
    return key.GetValue("InstalledLangShortString", language) ? 0 : -1;
}
