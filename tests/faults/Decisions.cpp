#include "Decisions.h"

#include <algorithm>
#include <array>

#include "Effects.h"

namespace {
// What several calls cost.
constexpr char kNothing[] = "";
constexpr char kRestorePoint[] = "-its end, -restore point";
constexpr char kIScsiTool[] = "-iSCSI tool";
constexpr char kFcoe[] = "-FCoE library";
constexpr char kVersions[] = "~Version, ~family Version";
constexpr char kSecondDevice[] = "-second INF, -second device, -status";
constexpr char kSecondDeviceAfterMorePasses[] = "+open search <KIT>\\Inf\\*.inf, -second device, -status";
constexpr char kFirstDevice[] =
    "-Install, -Reboot, -Version, -family Install, -family Version, -first device, "
    "-iSCSI tool, -registration, -status, -uninstall file";
constexpr char kFirstDeviceAfterMorePasses[] =
    "-Install, -Reboot, -Version, -family Install, -family Version, -first device, -iSCSI tool, "
    "+open search <KIT>\\Inf\\*.inf, -registration, -status, -uninstall file";
constexpr char kBothDevices[] =
    "~Install, -NetInst, -Version, ~family Install, -family Version, -first device, -iSCSI tool, -second device";
constexpr char kFamilyFailure[] = "~Install, -Version, ~family Install, -family Version";
constexpr char kStagedAside[] = "+staged aside, -staged file";
constexpr char kNoAdapterAsked[] = "-FCoE library, -Reboot";
constexpr char kNotStarted[] =
    "-FCoE library, -Install, -NetInst, -Reboot, -Version, ~exit code, -family Install, -family Version, -first INF, "
    "-first device, -iSCSI tool, -iSCSI version, -its end, +pending uninstall, -registration, -rescan, -restart, "
    "-restore point, -second INF, -second device, -status, -uninstall file";
constexpr char kManagementCheck[] =
    "+NetInst, -box, ~exit code, +open library <KIT>\\NetInst.dll, +open library <SYSTEM>\\setupapi.dll, "
    "+open library cfgmgr32.dll, +status";
constexpr char kOldExtension[] =
    "-Install, -NetInst, -Reboot, -Version, -family Install, -family Version, -first INF, -first device, -iSCSI tool, "
    "+pending uninstall, -registration, -rescan, -restart, -second INF, -second device, -status, -uninstall file";

constexpr std::array kDecisions = std::to_array<Decision>({
    // What is closed is not asked again.
    {"* RegCloseKey(*) *", kNothing},

    // Without a restore point the run goes on.
    {"install CoInitializeEx() 1", kRestorePoint, "Unexpected error: CoInitializeEx() failed"},
    {"install CoInitializeSecurity() 1", kNothing, "CoInitializeSecurity() failed"},
    {"install LoadLibraryW(srclient.dll) 1", kRestorePoint, "LoadLibrary failed!"},
    {"install GetProcAddress(SRSetRestorePointW) 1", kRestorePoint, "Failed to find SRSetRestorePointW."},
    {"install SRSetRestorePointW() 1", kRestorePoint, "call to restore point function failed!"},
    {"install SRSetRestorePointW() 2", "-its end", "Call to restore point (END_NESTED_SYSTEM_CHANGE) failed!"},

    // So it does without a new look at the hardware.
    {"install LoadLibraryA(cfgmgr32.dll) *", "-rescan", "error with GetProcAddress"},
    {"install GetProcAddress(CM_*) *", "-rescan", "error with GetProcAddress"},
    {"install CM_*() *", "-rescan"},

    // A text that cannot be read is empty.
    {"install FindResourceExA(2) 1", "~its end, ~restore point"},
    {"install FindResourceExA(1) *", "~status"},
    {"install *Resource() 1", "~its end, ~restore point"},
    {"install *Resource() 8", "~status"},
    {"install WideCharToMultiByte() 1", "~its end, ~restore point"},
    {"install WideCharToMultiByte() *", "~status"},
    {"main FindResourceExA(64) 2", "~box"},
    {"main FindResourceExA(2) 1", "~status"},
    {"main FindResourceExA(1) 1", "~status"},
    {"main *Resource() 1", "~status"},
    {"main WideCharToMultiByte() 1", "~status"},
    {"main FormatMessageA() *", "~status"},
    {"install FormatMessageA() *", kNothing},
    {"* SetDlgItemTextA(1000) *", "-status"},
    {"install GetPrivateProfileStringA(Strings, Nic.DeviceDesc) 1", "~status"},

    // The INF file of a device that cannot be read does not match it; the next device is served.
    {R"(install FindFirstFileA(<KIT>\Inf\*.inf) 1)", kFirstDeviceAfterMorePasses},
    {R"(install FindFirstFileA(<KIT>\Inf\*.inf) *)", kSecondDeviceAfterMorePasses},
    {R"(install FindNextFileA(search <KIT>\Inf\*.inf) 1)", kNothing},
    {R"(install FindNextFileA(search <KIT>\Inf\*.inf) *)", kSecondDeviceAfterMorePasses},
    {"install GetPrivateProfileSectionA(Win*) 1", kFirstDevice, "GetPrivateProfileSection() failed"},
    {"install GetPrivateProfileSectionA(Norda.NTamd64) 1", kFirstDeviceAfterMorePasses,
     "GetPrivateProfileSection() failed"},
    {"install GetPrivateProfileSectionA(*) *", kNothing, "GetPrivateProfileSection() failed"},
    {"install GetPrivateProfileStringA(Win*, InfSectionName) 1", kFirstDeviceAfterMorePasses,
     "section names from ini: "},
    {"install GetPrivateProfileStringA(Version, Signature) 1", kFirstDeviceAfterMorePasses,
     "signature section match for this OS not found"},
    {"install GetPrivateProfileStringA(Version, Signature) *", kNothing,
     "signature section match for this OS not found"},
    {"install GetPrivateProfileStringA(Manufacturer, *) 1", kFirstDeviceAfterMorePasses},
    {"install GetPrivateProfileStringA(Manufacturer, *) *", kNothing},
    {R"(install CreateFileA(<KIT>\Inf\*) 1)", kNothing, R"(unable to open file: <KIT>\Inf\)"},
    {R"(install ReadFile(file <KIT>\Inf\*) 1)", kNothing, "unable to read from file"},
    {"install LoadLibraryA(SetupApi.dll) 1", "-first INF", "SetupCopyInf - Returning FALSE, invalid instance"},
    {"install LoadLibraryA(SetupApi.dll) *", "-second INF", "SetupCopyInf - Returning FALSE, invalid instance"},
    {"install GetProcAddress(SetupCopyOEMInfA) 1", "-first INF", "SetupCopyInf - NULL Return Value"},
    {"install GetProcAddress(SetupCopyOEMInfA) *", "-second INF", "SetupCopyInf - NULL Return Value"},
    {"install SetupCopyOEMInfA() 1", "-first INF", "text of error 5"},
    {"install SetupCopyOEMInfA() *", "-second INF", "text of error 5"},

    // A device whose registry cannot be read is none of ours; the next one is served.
    {R"(install RegEnumKeyExA(SYSTEM\CurrentControlSet\Enum\PCI, 0) 1)", kFirstDevice},
    {R"(install RegEnumKeyExA(SYSTEM\CurrentControlSet\Enum\PCI, 1) 1)", kSecondDevice},
    {R"(install RegEnumKeyExA(SYSTEM\CurrentControlSet\Enum\PCI, 2) 1)", kNothing, "Enter -> IsNordaNetworkDevice()"},
    {R"(install Reg*(SYSTEM\CurrentControlSet\Enum\PCI\VEN_5D1A&DEV_7A02*) 1)", kSecondDevice},
    {"install RegQueryValueExA(CompatibleIDs, *) 1", kFirstDevice},
    {"install RegQueryValueExA(CompatibleIDs, *) *", kSecondDevice},

    // An adapter whose boot mode is not known does not boot over iSCSI.
    {"install CreateEventA() *", kIScsiTool},
    {R"(install CreateFileA(\\.\{5D1A0001-*) 1)", kIScsiTool},
    {"install DeviceIoControl(*) 1", kIScsiTool},
    {"install GetOverlappedResult() *", kIScsiTool},
    {R"(install RegEnumKeyExA(*\PCI\VEN_5D1A&DEV_7A01*, 0) 2)", kIScsiTool},
    {R"(install RegOpenKeyExA(*\PCI\VEN_5D1A&DEV_7A01*) 2)", kIScsiTool},
    {R"(install RegOpenKeyExA(*\9001) 2)", kIScsiTool},
    {"install RegQueryValueExA(Driver, *) 1", kIScsiTool},
    {"install RegQueryValueExA(NetCfgInstanceId, *) 3", kIScsiTool},
    {"main LoadLibraryA(iscsidsc.dll) 1", "-iSCSI tool, -iSCSI version"},
    {"main GetProcAddress(GetIScsiVersionInformation) 1", "-iSCSI tool, -iSCSI version"},
    {"main GetIScsiVersionInformation() 1", "-iSCSI tool, -iSCSI version"},
    {R"(main Reg*(*Class\{4D36E97B-*) *)", kIScsiTool},
    {"main RegOpenKeyExA(9001*) *", kIScsiTool},
    {"main RegQueryValueExA(DumpMiniPort, data) 1", kIScsiTool},
    {"main RegQueryValueExA(MatchingDeviceId, data) *", kIScsiTool},
    {"main GetSystemDirectoryA() 1", kNothing},
    {"main GetSystemDirectoryA() *", kIScsiTool, "Failed to call iSCSI command line utility."},
    {R"(main CreateProcessA(<SYSTEM>\iscsivrf.exe*) 1)", kIScsiTool, "Failed to call iSCSI command line utility."},

    // Now that the boot mode is known: the first reading of this device's keys.
    {R"(install Reg*(SYSTEM\CurrentControlSet\Enum\PCI\VEN_5D1A&DEV_7A01*) 1)", kFirstDevice},

    // An adapter that the FCoE library cannot be asked about does not boot over FCoE.
    {R"(install CreateMutexA(Global\CHBAAPINTMUT) 1)", kFcoe},
    {R"(install WaitForSingleObject(mutex Global\CHBAAPINTMUT) 1)", kFcoe},
    {"install LoadLibraryA(nordhapi.dll) *", kFcoe},
    {"install GetProcAddress(NORDA_*) *", kFcoe},
    {"install GetProcAddress(HBA_RegisterLibrary) *", kFcoe},
    {"install NORDA_*() *", kFcoe},
    {"install HBA_RegisterLibrary() *", kFcoe},
    {"install MultiByteToWideChar() *", kFcoe, "Failed to get NetCfgInstanceID from PCI device"},
    {R"(install RegOpenKeyExA(*\900*) 1)", kFcoe, "Failed to get NetCfgInstanceID from PCI device"},
    {"install RegQueryValueExA(NetCfgInstanceId, *) 1", kFcoe, "Failed to get NetCfgInstanceID from PCI device"},
    {"install SetupDiGetDeviceRegistryPropertyA(9) *", kFcoe, "Failed to get driver key from PCI device"},
    {"install SetupDiEnumDeviceInfo(1) 1", kFcoe},
    {"install SetupDiEnumDeviceInfo(0) 1", kNoAdapterAsked, "Failed to enumerate all PCI devices"},
    {"install SetupDiGetClassDevsA() 1", kNoAdapterAsked, "Failed to enumerate any PCI devices"},
    {"install GetProcAddress(SetupDi*) *", kNoAdapterAsked, "Failed to enumerate any PCI devices"},

    // A run of which it is not known whether anybody sees it asks nothing.
    {"install GetProcessWindowStation() *", "+open library <SYSTEM>\\setupapi.dll", "", "interactive-network-boot"},
    {"install GetUserObjectInformationA() *", "+open library <SYSTEM>\\setupapi.dll", "", "interactive-network-boot"},
    {"install ProcessIdToSessionId() *", "+open library <SYSTEM>\\setupapi.dll", "", "interactive-network-boot"},

    // Without the set-up library the platform asks as it does by itself.
    {R"(* LoadLibraryExA(<SYSTEM>\setupapi.dll) 1)", kNothing},
    {"install GetProcAddress(SetupSetNonInteractiveMode) 1", kNothing},
    {R"(install LoadLibraryExA(<SYSTEM>\setupapi.dll) *)", kNoAdapterAsked, "Failed to enumerate any PCI devices"},

    // Without the installer library no device is installed, and each is reported.
    {R"(install LoadLibraryA(<KIT>\NetInst.dll) 1)", kBothDevices, R"(unable to load: <KIT>\NetInst.dll)"},
    {"install GetProcAddress(DllGetClassFactoryObject) 1", kBothDevices, R"(unable to load: <KIT>\NetInst.dll)"},
    {"install DllGetClassFactoryObject(*) 1", kBothDevices, " 2K/XP UpdateDriver() returned: e0000207"},
    {"install RegSetValueExA(Tavunstl_source_path) 1", "~first device"},
    {"install RegSetValueExA(Tavunstl_source_path) 2", "~second device"},
    {"install RegDeleteValueA(Tavunstl_source_path) 2", "+source path"},

    // A result whose file is not found is a failure; one whose version is not known has an empty version.
    {R"(install FindFirstFileA(<SYSTEM>\drivers\NGEA*.sys) 1)", kFamilyFailure,
     R"(Driver sys file NOT found in \system32\drivers)"},
    {"install GetSystemDirectoryA() 1", kNothing},
    {R"(install LoadLibraryExA(<SYSTEM>\version.dll) 1)", kVersions},
    {"install GetProcAddress(GetFileVersionInfo*) 1", kVersions},
    {"install GetProcAddress(VerQueryValueA) 1", kVersions},
    {R"(install FindFirstFileA(<SYSTEM>\drivers\ngea62x64.sys) 1)", kVersions},
    {R"(install GetFileVersionInfo*(<SYSTEM>\drivers\ngea62x64.sys) 1)", kVersions},
    {"install VerQueryValueA() 1", kVersions},
    {"install wsprintfA() 1", kVersions},
    {R"(install RegCreateKeyA(SOFTWARE\Norda\Basedrivers) 1)",
     "-Install, -Reboot, -Version, -family Install, -family Version"},
    {"install RegSetValueExA(Install) 1", "-Install"},
    {"install RegSetValueExA(Reboot) 1", "-Reboot"},
    {"install RegSetValueExA(TAVG_PCIE_Install) 1", "-family Install"},
    {"install RegSetValueExA(TAVG_PCIE_Version) 1", "-family Version"},
    {"install RegSetValueExA(Version) 1", "-Version"},
    {R"(install CopyFileA(<KIT>\Morvix.din) 1)", "-registration, -uninstall file"},
    {R"(install RegCreateKeyA(SOFTWARE\Norda\Tavunstl\Dins) 1)", "-registration"},
    {"install RegSetValueExA(Morvix.din) 1", "-registration"},
    {"main RegSetValueExA(RebootNeeded) 1", "-RebootNeeded"},

    // Which system this is: what it cannot say counts as not so.
    {"install GetModuleHandleA(kernel32.dll) 1", kNothing, "osWINSEVEN32 detected"},
    {"install GetProcAddress(GetNativeSystemInfo) 1", kNothing, "osWINSEVEN32 detected"},
    {"install GetVersionExA() 1", kNothing, "osWIN2K8R232E detected"},

    // The trace is off where its switch cannot be read.
    {R"(* RegOpenKeyA(SOFTWARE\Norda\Basedrivers\Debug) *)", kNothing},
    {"main GetCurrentDirectoryA() 1", kNothing, "invoked dir: <LF>"},

    // The bar's window class may be missing; where the manifest selects no controls, they are the system's older ones.
    {"main FindActCtxSectionStringA(comctl32.dll) 1", "+open library <SYSTEM>\\comctl32.dll"},
    {"main LoadLibraryA(comctl32.dll) 1", kNothing},
    {"main GetProcAddress(InitCommonControlsEx) 1", kNothing},

    // The end of the run: no restart where it cannot be offered, asked for or made.
    {"install PostMessageA(registered) 1", "-restart, -status, -timer"},
    {"main RegisterWindowMessageA() 1", "-restart, -status, -timer", "", "interactive-network-boot"},
    {"main SetTimer(0) 1", "-restart, -status, -timer"},
    {"main MessageBoxA(You must restart*) 1", "-box, -restart"},
    {"main MessageBoxA(*) 1", "-box"},
    {"main ExitWindowsEx() 1", "-restart"},
    {"install SetTimer(1) 1", "-timer"},
    {R"(main RegOpenKeyExA(System\CurrentControlSet\Control\Session Manager) 1)", "+pending uninstall",
     "Unable to access REG_TAVUNSTL_SESSIONMANAGER Key"},
    {"main RegQueryValueExA(PendingFileRenameOperations, *) 1", "+pending uninstall",
     "TAVUnstl value was not in the substring"},
    {"main RegQueryValueExA(PendingFileRenameOperations, *) 2", "+pending uninstall"},
    {"main RegSetValueExA(PendingFileRenameOperations) 1", "+pending uninstall",
     "Not able to remove TAVUnstl from MultiString"},
    {"main DestroyWindow() 1", "+open dialog", "", "silent-network-boot"},
    {"main CreateMutexA(Morvix) 1", kNothing},

    // What the run cannot do without ends it before anything is installed.
    {R"(main GetFileAttributesA(<KIT>\Morvix.ini) 1)", kNotStarted, R"(ini file: <KIT>\Morvix.ini, NOT FOUND)"},
    {R"(main LoadLibraryA(<KIT>\MorvixRes.dll) 1)", kNotStarted, R"(unable to load: <KIT>\MorvixRes.dll)"},
    {R"(main LoadLibraryA(<KIT>\NetInst.dll) 1)", kNotStarted, R"(unable to load: <KIT>\NetInst.dll)"},
    {"main GetProcAddress(DllGetClassFactoryObject) 1", kNotStarted, R"(unable to load: <KIT>\NetInst.dll)"},
    {"main DllGetClassFactoryObject(*) 1", kNotStarted},
    {"main OpenThreadToken() 1", kNotStarted, "You need administrator rights"},
    {"main OpenProcessToken(8) 1", kNotStarted, "You need administrator rights"},
    {"main GetTokenInformation(*) 1", kNotStarted, "You need administrator rights"},
    {"main AllocateAndInitializeSid() 1", kNotStarted, "You need administrator rights"},
    {"main CreateDialogParamA() 1", kNotStarted, "unable to create the dialog"},
    {"main RegisterClassA() 1",
     "-FCoE library, -Install, -NetInst, -Reboot, -Version, +box, -family Install, -family Version, -first INF, "
     "-first device, -iSCSI tool, -iSCSI version, -its end, +pending uninstall, -registration, -rescan, -restart, "
     "-restore point, -second INF, -second device, -status, -uninstall file"},

    // A dialog whose thread does not start, or cannot read the device keys, stays.
    {"main CreateThread() 1",
     "-FCoE library, -Install, -NetInst, -Reboot, -Version, -family Install, -family Version, -first INF, "
     "-first device, -iSCSI tool, -its end, +open dialog, +pending uninstall, -registration, -rescan, -restart, "
     "-restore point, -second INF, -second device, -status, -uninstall file",
     "", "silent-network-boot"},
    {"main CreateThread() 1",
     "-FCoE library, -Install, -NetInst, -Reboot, -Version, -box, -family Install, -family Version, -first INF, "
     "-first device, -iSCSI tool, -its end, +open dialog, +pending uninstall, -registration, -rescan, -restart, "
     "-restore point, -second INF, -second device, -status, -timer, -uninstall file",
     "", "interactive-network-boot"},
    {R"(install RegOpenKeyExA(SYSTEM\CurrentControlSet\Enum\PCI) 1)",
     "+open COM COM, +open library srclient.dll, ~status", "", "interactive"},
    {R"(install RegOpenKeyExA(SYSTEM\CurrentControlSet\Enum\PCI) 1)",
     "-Install, -Reboot, -Version, -family Install, -family Version, -first INF, -first device, -iSCSI tool, "
     "-its end, +open COM COM, +open dialog, +open library srclient.dll, -registration, -rescan, -second INF, "
     "-second device, -status, -uninstall file",
     "", "silent-network-boot"},
    {R"(install RegOpenKeyExA(SYSTEM\CurrentControlSet\Enum\PCI) 1)",
     "-Install, -Reboot, -Version, -family Install, -family Version, -first INF, -first device, -iSCSI tool, "
     "-its end, +open COM COM, +open dialog, +open library srclient.dll, -registration, -rescan, -restart, "
     "-second INF, -second device, -status, -timer, -uninstall file",
     "", "interactive-network-boot"},

    // Management software that cannot be looked for is not there.
    {R"(main CreateMutexA(Global\TaviskMutex) 1)", kManagementCheck, "", "management-software"},
    {R"(main RegOpenKeyExA(System\CurrentControlSet\Control\ProductOptions) 1)", kManagementCheck},
    {"main RegQueryValueExA(ProductSuite, *) 1", kManagementCheck},
    {R"(install RegOpenKeyExA(SOFTWARE\Norda\Network_Services\TERN) 1)", kOldExtension},
    {"install RegQueryValueExA(OEMVersion, data) 1", kOldExtension},

    // The 9x family.
    {R"(install CopyFileA(<KIT>\Inf\ngeatest.inf) 1)", kStagedAside, "text of error 5"},
    {R"(install FindFirstFileA(<KIT>\Inf\*.*) 1)", kStagedAside, "no files found in source directory"},
    {R"(install FindNextFileA(search <KIT>\Inf\*.*) 1)", kStagedAside, "Unable to find next file"},
    {R"(install FindNextFileA(search <KIT>\Inf\*.*) 3)", kNothing, "Unable to find next file"},
    {R"(install FindClose(search <KIT>\Inf\*.*) 1)", kNothing, "Unable to close search handle"},
    {R"(install RegOpenKeyExA(Software\Microsoft\Windows\CurrentVersion\Setup) 1)", kStagedAside, "cab dir: <LF>"},
    {"install RegQueryValueExA(SourcePath, data) 1", kStagedAside, "cab dir: <LF>"},
    {"install CreateProcessA(Rundll.exe *) *", "-legacy helper", "CreateProcess() error (path too long?)"},
    {"install GetWindowsDirectoryA() 1", "~legacy helper", "new cab dir: <LF>"},
    {R"(install GetShortPathNameA(<KIT>\) 1)", kNothing, "current directory:  <KIT><LF>"},
    {R"(install SetCurrentDirectoryA(<KIT-SHORT>\) 1)", kNothing, "current directory:  <KIT><LF>"},
    {R"(install RegCreateKeyExA(Software\Norda\MSI) 1)", "-legacy helper"},
    {R"(install RegCreateKeyExA(Software\Norda\MSI) 2)", "~RegPCIpath, -legacy helper"},
    {"install RegSetValueExA(RegPCIpath) 1", kNothing},
    {"install RegSetValueExA(RegPCIpath) 2", "~RegPCIpath"},
    {"install LoadLibraryA(newdev.dll) 1", "-first device"},
    {"install GetProcAddress(UpdateDriverForPlugAndPlayDevicesA) 1", "-first device"},
    {"install UpdateDriverForPlugAndPlayDevicesA() 1", "-first device", "drivers *not* upgraded"},
    {R"(install RegEnumKeyExA(Enum\PCI, 0) 1)",
     "-Install, -Reboot, -Version, -family Install, -family Version, -first INF, -first device, -registration, "
     "-status, -uninstall file"},
    {R"(install RegEnumKeyExA(Enum\PCI, 1) 1)", kNothing, "Enter -> IsNordaNetworkDevice()"},
    {R"(install RegEnumKeyExA(Enum\PCI\, 0) 1)",
     "-Install, -Reboot, -RegPCIpath, -Version, -family Install, -family Version, -first INF, -legacy helper, "
     "-registration, -status, -uninstall file"},
    {R"(install RegEnumKeyExA(Enum\PCI\, 1) 1)", kNothing, "Enter -> IsNordaNetworkDevice()"},
    {R"(install RegEnumKeyExA(Enum\PCI\VEN_*, 0) 1)", "-legacy helper"},
    {R"(install RegEnumKeyExA(Enum\PCI\VEN_*, 1) 1)", "~RegPCIpath, -legacy helper"},
    {R"(install RegOpenKeyExA(Enum\PCI) 1)",
     "-Install, -Reboot, -Version, -family Install, -family Version, -first INF, -first device, +open COM COM, "
     "+open dialog, +open library srclient.dll, -registration, -staged file, -status, -uninstall file"},
    {R"(install RegOpenKeyExA(Enum\PCI\) 1)",
     "-Install, -Reboot, -RegPCIpath, -Version, -family Install, -family Version, -first INF, -legacy helper, "
     "+open COM COM, +open dialog, +open library srclient.dll, -registration, -staged file, -status, -uninstall file"},
    {R"(install RegOpenKeyExA(Enum\PCI\VEN_*) 1)", "-RegPCIpath, -legacy helper"},
});

bool Matches(std::string_view text, std::string_view pattern)
{
    if (pattern.empty()) {
        return text.empty();
    }
    if (pattern.front() == '*') {
        return Matches(text, pattern.substr(1)) || (!text.empty() && Matches(text.substr(1), pattern));
    }
    return !text.empty() && text.front() == pattern.front() && Matches(text.substr(1), pattern.substr(1));
}

/// A result key holds what the clean run writes, a failure, or no version; nothing in between.
bool IsWhole(const std::string& line, const Outcome& clean)
{
    return !line.starts_with(R"(left: SOFTWARE\Norda\Basedrivers)") || line.ends_with(" FAILURE<00>") ||
           line.ends_with("Version type 1 <00>") || line.find("Tavunstl_source_path") != std::string::npos ||
           std::ranges::find(clean.lines, line) != clean.lines.end();
}

/// What a run leaves open by design: one search for each pass over a directory, the libraries whose objects or texts
/// may still be in use, and, when it stops halfway, what it has begun. Everything else stays open only if the clean run
/// keeps it too.
bool MayStay(const std::string& line, const Outcome& clean)
{
    constexpr std::array kByDesign = std::to_array<std::string_view>(
        {R"(search <KIT>\Inf\*.inf)", "COM COM", "library srclient.dll", "library cfgmgr32.dll",
         R"(library <KIT>\NetInst.dll)", R"(library <SYSTEM>\setupapi.dll)", R"(library <SYSTEM>\comctl32.dll)",
         R"(library <KIT>\MorvixRes.dll)"});
    constexpr std::string_view kOpen = "still open: ";
    return !line.starts_with(kOpen) || std::ranges::find(kByDesign, line.substr(kOpen.size())) != kByDesign.end() ||
           std::ranges::find(clean.lines, line) != clean.lines.end();
}
} // namespace

std::span<const Decision> AllDecisions()
{
    return kDecisions;
}

const Decision* FindDecision(const std::string& scenario, const CallName& call, unsigned ordinal)
{
    const std::string text = Describe(call) + " " + std::to_string(ordinal);
    const auto* const row = std::ranges::find_if(kDecisions, [&](const Decision& decision) {
        return (decision.scenario.empty() || decision.scenario == scenario) && Matches(text, decision.call);
    });
    return row == kDecisions.end() ? nullptr : &*row;
}

std::vector<std::string> BrokenInvariants(const CallName& call, const Outcome& clean, const Outcome& faulted)
{
    std::vector<std::string> complaints;
    if (!faulted.reached && !ComesByChance(call)) {
        complaints.emplace_back("the call is not made");
    }
    const auto code = static_cast<int>(faulted.exitCode);
    if (!faulted.ended || (code != 0 && code != -1)) {
        complaints.push_back(faulted.ended ? "exit code " + std::to_string(code) : "the run does not end");
    }
    for (const std::string& line : faulted.lines) {
        if (!IsWhole(line, clean)) {
            complaints.push_back("not whole: " + line);
        }
        if (!MayStay(line, clean)) {
            complaints.push_back(line);
        }
    }
    return complaints;
}

std::vector<std::string> Complaints(const std::string& scenario, const CallName& call, unsigned ordinal,
                                    const Outcome& clean, const Outcome& faulted)
{
    std::vector<std::string> complaints = BrokenInvariants(call, clean, faulted);
    const Decision* const decision = FindDecision(scenario, call, ordinal);
    const std::string effects = EffectsOf(clean, faulted);
    if (effects != (decision == nullptr ? "" : decision->effects)) {
        complaints.push_back("effects: " + effects);
    }
    if (decision == nullptr && faulted.lines != clean.lines) {
        const std::vector<std::string> difference = Difference(clean.lines, faulted.lines);
        complaints.insert(complaints.end(), difference.begin(), difference.end());
    } else if (decision != nullptr && !decision->says.empty() &&
               !TracesMore(clean, faulted, std::string(decision->says))) {
        complaints.push_back("does not trace: " + std::string(decision->says));
    }
    return complaints;
}
