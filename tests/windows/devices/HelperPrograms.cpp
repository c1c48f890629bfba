#include "HelperPrograms.h"

#include <array>
#include <fstream>
#include <stdexcept>

#include "DeviceFixtures.h"
#include "DriverUpdate.h"
#include "HardwareScan.h"

namespace {
constexpr char kOverridesKey[] = R"(Software\Wine\DllOverrides)";

std::string OwnPath()
{
    std::array<char, MAX_PATH> path{};
    GetModuleFileNameA(nullptr, path.data(), MAX_PATH);
    return path.data();
}

/// The installer's process sees its machine key below the user's key meanwhile.
std::string ReadInstancePath()
{
    const std::string key = MachineKeyOverride::kUserKey + std::string(R"(\Software\Norda\MSI)");
    std::array<char, 1024> text{};
    DWORD bytes = text.size() - 1;
    HKEY opened = nullptr;
    if (RegOpenKeyExA(HKEY_CURRENT_USER, key.c_str(), 0, KEY_READ, &opened) != ERROR_SUCCESS) {
        return "<no key>";
    }
    const LSTATUS status =
        RegQueryValueExA(opened, "RegPCIpath", nullptr, nullptr, reinterpret_cast<BYTE*>(text.data()), &bytes);
    RegCloseKey(opened);
    return status == ERROR_SUCCESS ? text.data() : "<no value>";
}

int RecordLegacyRun()
{
    std::array<char, MAX_PATH> directory{};
    GetCurrentDirectoryA(MAX_PATH, directory.data());
    std::ofstream journal(JournalOf(OwnPath()), std::ios::app);
    journal << GetCommandLineA() << '\n' << directory.data() << '\n' << ReadInstancePath() << '\n';
    return 0;
}

int RunSlowTool()
{
    const UniqueHandle started(OpenEventA(EVENT_MODIFY_STATE, FALSE, kSlowToolStarted));
    const UniqueHandle mayEnd(OpenEventA(SYNCHRONIZE, FALSE, kSlowToolMayEnd));
    if (!started || !mayEnd || SetEvent(started.get()) == FALSE ||
        WaitForSingleObject(mayEnd.get(), 60000) != WAIT_OBJECT_0) {
        return 1;
    }
    std::ofstream journal(JournalOf(OwnPath()), std::ios::app);
    journal << GetCommandLineA() << '\n';
    return 0;
}
} // namespace

std::optional<int> RunAsHelperProgram()
{
    const std::string path = OwnPath();
    const std::string name = path.substr(path.rfind('\\') + 1);
    if (lstrcmpiA(name.c_str(), kRundll) == 0) {
        return RecordLegacyRun();
    }
    if (lstrcmpiA(name.c_str(), kScanner) == 0) {
        return ScanForHardwareChanges();
    }
    if (lstrcmpiA(name.c_str(), kUpdater) == 0) {
        return static_cast<int>(UpdateDriver(kUpdatedInf, kUpdatedId));
    }
    if (lstrcmpiA(name.c_str(), kSlowTool) == 0) {
        return RunSlowTool();
    }
    return std::nullopt;
}

std::string JournalOf(const std::string& path)
{
    return path + ".journal.txt";
}

void MakeHelperProgram(const std::string& path)
{
    CopyFileTo(OwnPath(), path);
}

std::vector<LegacyRun> LegacyRunsOf(const std::string& path)
{
    std::vector<LegacyRun> runs;
    std::ifstream journal(JournalOf(path));
    LegacyRun run;
    while (std::getline(journal, run.commandLine) && std::getline(journal, run.directory) &&
           std::getline(journal, run.instancePath)) {
        runs.push_back(run);
    }
    return runs;
}

std::pair<DWORD, DWORD> RunToEnd(const std::string& path)
{
    STARTUPINFOA startup{};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION process{};
    if (CreateProcessA(path.c_str(), nullptr, nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &process) ==
        FALSE) {
        throw std::runtime_error("cannot start " + path);
    }
    const UniqueHandle processOwner(process.hProcess);
    const UniqueHandle threadOwner(process.hThread);
    DWORD exitCode = 0;
    if (WaitForSingleObject(process.hProcess, 60000) != WAIT_OBJECT_0 ||
        GetExitCodeProcess(process.hProcess, &exitCode) == FALSE) {
        TerminateProcess(process.hProcess, 1);
        throw std::runtime_error(path + " does not end");
    }
    return {process.dwProcessId, exitCode};
}

LibraryLoading::LibraryLoading(std::string name, const std::string& order) : m_name(std::move(name))
{
    HKEY key = nullptr;
    if (RegCreateKeyA(HKEY_CURRENT_USER, kOverridesKey, &key) != ERROR_SUCCESS) {
        throw std::runtime_error("the library's load order cannot be set");
    }
    const UniqueRegKey owner(key);
    RegSetValueExA(key, m_name.c_str(), 0, REG_SZ, reinterpret_cast<const BYTE*>(order.c_str()),
                   static_cast<DWORD>(order.size() + 1));
}

LibraryLoading::~LibraryLoading()
{
    HKEY key = nullptr;
    if (RegCreateKeyA(HKEY_CURRENT_USER, kOverridesKey, &key) == ERROR_SUCCESS) {
        const UniqueRegKey owner(key);
        RegDeleteValueA(key, m_name.c_str());
    }
}
