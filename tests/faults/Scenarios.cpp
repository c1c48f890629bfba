// The ways through the program that together make every call it can make.

#include <array>
#include <optional>

#include "EmulatedSystem.h"
#include "Environment.h"
#include "OwnInfs.h"
#include "RegistryKeys.h"
#include "Scenario.h"
#include "StorageBoot.h"

namespace {
constexpr char kDriverFile[] = "ngea62x64.sys";
constexpr char kSetupKey[] = R"(Software\Microsoft\Windows\CurrentVersion\Setup)";
constexpr char kProductOptions[] = R"(System\CurrentControlSet\Control\ProductOptions)";
constexpr uint32_t kNdis52 = 0x00050002;

/// The driver file that the sample kit installs, in its place.
class DriverFile
{
public:
    DriverFile() { CopyFileTo(DistFolder() + "\\Drv\\Win7x64\\" + kDriverFile, DriverPath(kDriverFile)); }
    ~DriverFile() { DeleteFileA(DriverPath(kDriverFile).c_str()); }
    DriverFile(const DriverFile&) = delete;
    DriverFile& operator=(const DriverFile&) = delete;
};

/// A value of the machine's own, put back at the end of the object's life.
class SavedMachineValue
{
public:
    SavedMachineValue(std::string key, std::string name)
        : m_key(std::move(key)), m_name(std::move(name)), m_before(ReadRegistryValue(m_key, m_name))
    {
    }
    ~SavedMachineValue()
    {
        if (m_before) {
            SetRegistryBytes(m_key, m_name, m_before->bytes, m_before->type);
            return;
        }
        HKEY opened = nullptr;
        if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, m_key.c_str(), 0, KEY_SET_VALUE, &opened) == ERROR_SUCCESS) {
            const UniqueRegKey key(opened);
            RegDeleteValueA(opened, m_name.c_str());
        }
    }
    SavedMachineValue(const SavedMachineValue&) = delete;
    SavedMachineValue& operator=(const SavedMachineValue&) = delete;

private:
    std::string m_key;
    std::string m_name;
    std::optional<RegistryValue> m_before;
};

std::vector<std::string> PendingOperationLines()
{
    std::vector<std::string> lines;
    for (const std::string& entry : PendingOperations::Entries()) {
        lines.push_back("left: pending " + entry);
    }
    return lines;
}

/// A machine that boots over iSCSI and FCoE, with two adapters: one of the PCI Express family, one with the DMA engine.
class NetworkBoot : public Scenario
{
protected:
    NetworkBoot(const std::string& arguments, const SystemVersion& system, bool interactive = false)
        : Scenario(arguments, interactive), m_system(system)
    {
        WriteInf("ngeatest.inf", InfFor(kFirstDevice));
        // Found in the second pass: without the revision.
        WriteInf("qdatdma.inf", InfFor(std::string(kSecondDevice).substr(0, std::string(kSecondDevice).find("&REV"))));
        for (const char* library : {"srclient.dll", "cfgmgr32.dll", "nordhapi.dll", "iscsidsc.dll"}) {
            Folder().UseDouble(library);
        }
        Folder().Answer("srclient", "Sequence", "7");
        Folder().Answer("nordhapi", "Flags", "1");
        Folder().Answer("iscsidsc", "Major", "6");
        Folder().Answer("iscsidsc", "Build", "6000");
        m_driver.AnswerBootMode(kFirstInstance, 2);
    }

    void Reset() override
    {
        SetRegistryText(kExtensionKey, "OEMVersion", "16.2");
        SetRegistryList(R"(SYSTEM\CurrentControlSet\Control\Session Manager)", "PendingFileRenameOperations",
                        {R"(\??\C:\Windows\Temp\one.tmp)", R"(\??\C:\Windows\system32\Tavunstl.exe)"});
    }
    std::vector<std::string> State() override { return PendingOperationLines(); }

private:
    const EmulatedSystem m_system;
    const NativeLibrary m_restore{"srclient"};
    const NativeLibrary m_deviceTree{"cfgmgr32"};
    const DriverFile m_driverFile;
    const InstalledAdapter m_first{kFirstDevice, "9001", kFirstInstance};
    const InstalledAdapter m_second{kSecondDevice, "9002", kSecondInstance};
    TestAdapterDriver m_driver{DoublesFolder() + R"(\test_adapter.sys)",
                               {{kFirstInstance, std::string(kFirstInstance) + "_Private"},
                                {kSecondInstance, std::string(kSecondInstance) + "_Private"}},
                               kNdis52};
    const IScsiInitiator m_initiator{"iSCSDump.sys"};
    const PendingOperations m_pending{{}};
};

struct SilentNetworkBoot : NetworkBoot
{
    SilentNetworkBoot() : NetworkBoot("/s", {nullptr, "6.1", "7601", "WinNT"}) {}
};

/// On a 6.0 server, which asks whether it is a later one.
struct InteractiveNetworkBoot : NetworkBoot
{
    InteractiveNetworkBoot() : NetworkBoot("", {nullptr, "6.0", "6002", "ServerNT"}, true) {}
};

struct InstallerPackage : NetworkBoot
{
    InstallerPackage() : NetworkBoot("/md", {nullptr, "6.1", "7601", "WinNT"})
    {
        Folder().Answer("nordhapi", "Flags", "0");
    }
};

/// A machine of the 9x family as the system prober names it, on a system that the setup INI serves.
class LegacyMachine : public Scenario
{
protected:
    LegacyMachine(const std::string& family, const SystemVersion& system) : Scenario("/s"), m_system(system)
    {
        WriteInf("ngeatest.inf", InfText({.ids = {kFirstDevice}, .signature = "$Chicago$"}));
        Folder().UseDouble("newdev.dll");
        Folder().Answer("NetInst", "Family", family);
        CreateDirectoryA(CabDirectory().c_str(), nullptr);
        for (const char* instance : {"BUS_00&DEV_08", "BUS_00&DEV_09"}) {
            CreateRegistryKey(m_devices.Path() + "\\PCI\\" + kFirstDevice + "\\" + instance);
        }
    }

    void Reset() override
    {
        SetRegistryText(kSetupKey, "SourcePath", CabDirectory());
        RemoveFiles(CabDirectory());
        RemoveFiles(FallbackDirectory());
        RemoveDirectoryA(FallbackDirectory().c_str());
    }
    std::vector<std::string> State() override
    {
        std::vector<std::string> lines;
        for (const std::string& directory : {CabDirectory(), FallbackDirectory()}) {
            for (const std::string& name : FilesMatching(directory + "\\*.*")) {
                if (!name.starts_with('.')) {
                    lines.push_back("left: staged " + directory + "\\" + name);
                }
            }
        }
        return lines;
    }

private:
    std::string CabDirectory() { return Folder().At("Cab"); }
    static std::string FallbackDirectory() { return WindowsDirectory() + "\\INSTALL"; }
    static void RemoveFiles(const std::string& directory)
    {
        for (const std::string& name : FilesMatching(directory + "\\*.*")) {
            DeleteFileA((directory + "\\" + name).c_str());
        }
    }

    const EmulatedSystem m_system;
    const NativeLibrary m_update{"newdev"};
    const DriverFile m_driverFile;
    const ScratchRegistryKey m_devices{"Enum"};
    const InstalledAdapter m_adapter{kFirstDevice, "9001", kFirstInstance};
    const SavedMachineValue m_sourcePath{kSetupKey, "SourcePath"};
};

struct Windows98 : LegacyMachine
{
    Windows98() : LegacyMachine("Windows 98", {nullptr, "6.1", "7601", "WinNT"}) {}
};

/// The setup INI knows nothing for this system: nothing is staged, and the legacy helper is run.
struct UnservedWindows98 : LegacyMachine
{
    UnservedWindows98() : LegacyMachine("Windows 98", {"win98", "4.10", "2222", "WinNT"}) {}
};

struct WindowsMe : LegacyMachine
{
    WindowsMe() : LegacyMachine("Windows Millenium", {nullptr, "6.1", "7601", "WinNT"}) {}
};

/// Windows NT 4 with the management software running on a terminal server.
class ManagementSoftware : public Scenario
{
public:
    ManagementSoftware() : Scenario("/s")
    {
        SetRegistryList(kProductOptions, "ProductSuite", {"Small Business", "Terminal Server"});
    }

private:
    const EmulatedSystem m_system{{"nt40", "4.0", "1381", "WinNT"}};
    const SavedMachineValue m_suite{kProductOptions, "ProductSuite"};
    const UniqueHandle m_running{CreateMutexA(nullptr, FALSE, R"(Global\TaviskMutex)")};
};

/// A system that the prober turns down.
class TurnedDown : public Scenario
{
public:
    TurnedDown() : Scenario("") { Folder().Answer("NetInst", "ProberStatus", "0x80640010"); }

private:
    const EmulatedSystem m_system{{nullptr, "6.1", "7601", "WinNT"}};
};

/// Somebody installs on a machine without an adapter.
class Interactive : public Scenario
{
public:
    Interactive() : Scenario("", true) {}

private:
    const EmulatedSystem m_system{{nullptr, "6.1", "7601", "WinNT"}};
};

template <class Made>
std::unique_ptr<Scenario> Make()
{
    return std::make_unique<Made>();
}

} // namespace

std::span<const ScenarioRow> AllScenarios()
{
    static const std::array kScenarios = std::to_array<ScenarioRow>({
        {"silent-network-boot", Make<SilentNetworkBoot>, {}},
        {"interactive-network-boot",
         Make<InteractiveNetworkBoot>,
         {"main CreateThread()", "main DestroyWindow()", "main GetMessageA()", "main RegisterWindowMessageA()",
          R"(install RegOpenKeyExA(SYSTEM\CurrentControlSet\Enum\PCI))"}},
        {"interactive",
         Make<Interactive>,
         {"install GetDlgItem(1002)", R"(install RegOpenKeyExA(SYSTEM\CurrentControlSet\Enum\PCI))"}},
        {"installer-package", Make<InstallerPackage>, {}},
        {"windows-98", Make<Windows98>, {}},
        {"windows-98-unserved", Make<UnservedWindows98>, {}},
        {"windows-me", Make<WindowsMe>, {}},
        {"management-software", Make<ManagementSoftware>, {}},
        {"turned-down", Make<TurnedDown>, {}},
    });
    return kScenarios;
}
