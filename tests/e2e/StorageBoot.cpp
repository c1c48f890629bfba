#include "StorageBoot.h"

#include <sstream>

#include "Environment.h"

namespace {
constexpr char kNetClass[] = "{4D36E972-E325-11CE-BFC1-08002BE10318}";
constexpr char kPciKey[] = R"(SYSTEM\CurrentControlSet\Enum\PCI)";
constexpr char kClassKey[] = R"(SYSTEM\CurrentControlSet\Control\Class)";
constexpr char kInitiatorKey[] =
    R"(SYSTEM\CurrentControlSet\Control\Class\{4D36E97B-E325-11CE-BFC1-08002BE10318}\9001)";
constexpr char kSessionManagerKey[] = R"(SYSTEM\CurrentControlSet\Control\Session Manager)";
constexpr char kPendingValue[] = "PendingFileRenameOperations";
// Below HKEY_CURRENT_USER.
constexpr char kDisplayKey[] = R"(Software\Wine\AppDefaults\Morvix.exe\X11 Driver)";

std::string ToolJournal()
{
    return IScsiTool::Path() + ".journal.txt";
}

void DeletePendingOperations()
{
    HKEY key = nullptr;
    if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, kSessionManagerKey, 0, KEY_SET_VALUE, &key) == ERROR_SUCCESS) {
        const UniqueRegKey owner(key);
        RegDeleteValueA(key, kPendingValue);
    }
}
} // namespace

InstalledAdapter::InstalledAdapter(const std::string& deviceId, const std::string& driverKey,
                                   const std::string& instanceId)
    : Adapter(deviceId)
{
    const std::string deviceKey = std::string(kPciKey) + "\\" + deviceId;
    const std::string driver = std::string(kNetClass) + "\\" + driverKey;
    SetRegistryText(deviceKey + "\\" + RegistrySubKeys(deviceKey).at(0), "Driver", driver);
    SetRegistryText(std::string(kClassKey) + "\\" + driver, "NetCfgInstanceId", instanceId);
}

IScsiInitiator::IScsiInitiator(const std::optional<std::string>& dumpDriver, const std::string& matchingDeviceId,
                               bool withParameters)
    : m_key(kInitiatorKey)
{
    SetRegistryText(m_key.Path(), "MatchingDeviceId", matchingDeviceId);
    if (withParameters) {
        CreateRegistryKey(m_key.Path() + "\\Parameters");
    }
    if (dumpDriver) {
        SetRegistryText(m_key.Path() + "\\Parameters", "DumpMiniPort", *dumpDriver);
    }
}

IScsiTool::IScsiTool()
{
    DeleteFileA(ToolJournal().c_str());
    CopyFileTo(DoublesFolder() + R"(\..\command_line_recorder.exe)", Path());
}

IScsiTool::~IScsiTool()
{
    DeleteFileA(Path().c_str());
    DeleteFileA(ToolJournal().c_str());
}

std::string IScsiTool::Path()
{
    return SystemDirectory() + "\\iscsivrf.exe";
}

std::vector<std::string> IScsiTool::CommandLines()
{
    constexpr std::string_view kStart = "command line: ";
    std::vector<std::string> commandLines;
    if (FileExists(ToolJournal())) {
        std::istringstream journal(ReadFileBytes(ToolJournal()));
        for (std::string line; std::getline(journal, line);) {
            if (line.starts_with(kStart)) {
                commandLines.push_back(line.substr(kStart.size()));
            }
        }
    }
    return commandLines;
}

PendingOperations::PendingOperations(const std::vector<std::string>& entries)
    : m_before(ReadRegistryValue(kSessionManagerKey, kPendingValue))
{
    SetRegistryList(kSessionManagerKey, kPendingValue, entries);
}

PendingOperations::~PendingOperations()
{
    DeletePendingOperations();
    if (m_before) {
        SetRegistryBytes(kSessionManagerKey, kPendingValue, m_before->bytes, m_before->type);
    }
}

std::vector<std::string> PendingOperations::Entries()
{
    std::vector<std::string> entries;
    const std::optional<RegistryValue> value = ReadRegistryValue(kSessionManagerKey, kPendingValue);
    std::istringstream list(value ? value->bytes : std::string());
    for (std::string entry; std::getline(list, entry, '\0') && !entry.empty();) {
        entries.push_back(entry);
    }
    return entries;
}

NoWindowManager::NoWindowManager()
{
    HKEY key = nullptr;
    if (RegCreateKeyA(HKEY_CURRENT_USER, kDisplayKey, &key) == ERROR_SUCCESS) {
        const UniqueRegKey owner(key);
        RegSetValueExA(key, "Managed", 0, REG_SZ, reinterpret_cast<const BYTE*>("N"), 2);
    }
}

NoWindowManager::~NoWindowManager()
{
    RegDeleteKeyA(HKEY_CURRENT_USER, kDisplayKey);
}

void StorageRun::UseFcoeLibrary(const std::string& flags)
{
    Folder().UseDouble("nordhapi.dll");
    Folder().Answer("nordhapi", "Flags", flags);
}

void StorageRun::UseIScsiLibrary(const std::string& major, const std::string& minor, const std::string& build)
{
    Folder().UseDouble("iscsidsc.dll");
    Folder().Answer("iscsidsc", "Major", major);
    Folder().Answer("iscsidsc", "Minor", minor);
    Folder().Answer("iscsidsc", "Build", build);
}

void StorageRun::SetExtensionVersion(const std::string& version)
{
    SetRegistryText(kExtensionKey, "OEMVersion", version);
}

std::unique_ptr<TestAdapterDriver> StorageRun::StartAdapterDriver(std::optional<uint32_t> ndisVersion)
{
    const std::vector<TestAdapterDriver::Adapter> adapters = {
        {kFirstInstance, std::string(kFirstInstance) + "_Private"},
        {kSecondInstance, std::string(kSecondInstance) + "_Private"}};
    return std::make_unique<TestAdapterDriver>(DoublesFolder() + R"(\test_adapter.sys)", adapters, ndisVersion);
}

void StorageRun::ExpectRestart(const FinishedRun& run) const
{
    EXPECT_EQ(run.Count("Entering - RestartMachine"), 1u);
    EXPECT_TRUE(m_watch.WaitForRefusal());
    EXPECT_EQ(m_watch.Refused(), 1u);
}

void StorageRun::ExpectNoRestart(const FinishedRun& run) const
{
    EXPECT_FALSE(run.Traced("Entering - RestartMachine"));
    EXPECT_EQ(m_watch.Refused(), 0u);
}

void StorageRun::ExpectRebootNeeded()
{
    const std::optional<RegistryValue> value = ReadRegistryValue(kResultsKey, "RebootNeeded");
    ASSERT_TRUE(value);
    EXPECT_EQ(value->type, static_cast<DWORD>(REG_DWORD));
    EXPECT_EQ(value->bytes, std::string("\1\0\0\0", 4));
}

void StorageRun::ExpectNoRebootNeeded()
{
    EXPECT_FALSE(ReadRegistryValue(kResultsKey, "RebootNeeded"));
}

std::vector<std::string> StorageRun::DecidedBetween(const FinishedRun& run, const std::string& from,
                                                    const std::string& to)
{
    std::vector<std::string> lines = run.Between(from, to);
    for (const char* ending : {"Entering EndRestorePoint", "Exiting EndRestorePoint", "Exit -> InstallDrivers()\n"}) {
        std::erase(lines, ending);
    }
    return lines;
}
