#include "CleanMachine.h"

#include <windows.h>
// setupapi.h needs windows.h first.
#include <setupapi.h>

#include <algorithm>
#include <filesystem>
#include <set>

#include "Adapter.h"
#include "EmulatedSystem.h"
#include "Environment.h"
#include "RegistryKeys.h"

namespace {
constexpr char kServicesKey[] = R"(SYSTEM\CurrentControlSet\Services)";
constexpr char kDebugKey[] = R"(SOFTWARE\Norda\Basedrivers\Debug)";

struct ServiceCloser
{
    using pointer = SC_HANDLE;
    void operator()(SC_HANDLE handle) const { CloseServiceHandle(handle); }
};
using UniqueService = std::unique_ptr<SC_HANDLE, ServiceCloser>;

// The driver files that the kit can install, in upper case.
std::set<std::string> KitDriverFiles()
{
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(DistFolder())) {
        std::string name = UpperCase(entry.path().filename().string());
        if (name.ends_with(".SYS")) {
            names.insert(std::move(name));
        }
    }
    return names;
}

void RemoveServices(const std::set<std::string>& driverFiles)
{
    const UniqueService manager(OpenSCManagerA(nullptr, nullptr, SC_MANAGER_ALL_ACCESS));
    for (const std::string& name : RegistrySubKeys(kServicesKey)) {
        const std::string image = UpperCase(ReadRegistryText(std::string(kServicesKey) + "\\" + name, "ImagePath"));
        if (!driverFiles.contains(image.substr(image.rfind('\\') + 1))) {
            continue;
        }
        const UniqueService service(OpenServiceA(manager.get(), name.c_str(), SERVICE_ALL_ACCESS));
        if (service) {
            SERVICE_STATUS status = {};
            ControlService(service.get(), SERVICE_CONTROL_STOP, &status);
            DeleteService(service.get());
        }
    }
}

void RemoveFile(const std::string& path)
{
    SetFileAttributesA(path.c_str(), FILE_ATTRIBUTE_NORMAL);
    DeleteFileA(path.c_str());
}
void RemoveStoredInfs()
{
    // Windows stores an INF under another name; Wine keeps the name where it can.
    const std::string directory = WindowsDirectory() + "\\inf\\";
    for (const std::string& name : FilesMatching(directory + (RunsInWine() ? "*.inf" : "oem*.inf"))) {
        const std::string text = UpperCase(ReadFileBytes(directory + name));
        // The vendor's name in both encodings that an INF can have.
        if (text.find("NORDA") == std::string::npos &&
            text.find(std::string("N\0O\0R\0D\0A\0", 10)) == std::string::npos) {
            continue;
        }
        SetupUninstallOEMInfA(name.c_str(), SUOI_FORCEDELETE, nullptr);
        RemoveFile(directory + name);
        RemoveFile(directory + name.substr(0, name.rfind('.')) + ".pnf");
    }
}
} // namespace

void CleanTheMachine()
{
    const std::set<std::string> driverFiles = KitDriverFiles();
    RemoveSimulatedAdapters();
    RemoveServices(driverFiles);
    RemoveStoredInfs();
    for (const std::string& name : driverFiles) {
        RemoveFile(DriverPath(name));
    }
    RemoveFile(SystemDirectory() + "\\Morvix.din");
    DeleteRegistryTree(R"(SOFTWARE\Norda)");
    EndEmulations();
}

CleanMachine::CleanMachine()
{
    SwitchTrace(true);
}

CleanMachine::~CleanMachine() = default;

void CleanMachine::SwitchTrace(bool on)
{
    if (on) {
        CreateRegistryKey(kDebugKey);
    } else {
        DeleteRegistryTree(kDebugKey);
    }
}

FinishedRun CleanMachine::RunMorvix(const std::string& arguments)
{
    return StartMorvix(arguments)->Finish();
}

FinishedRun CleanMachine::RunMorvixCalled(const std::string& calledAs, const std::string& arguments,
                                          const std::string& workingDirectory)
{
    return ProgramRun(m_output, m_folder.At("Morvix.exe"), calledAs, arguments, workingDirectory).Finish();
}

std::unique_ptr<ProgramRun> CleanMachine::StartMorvix(const std::string& arguments)
{
    const std::string program = m_folder.At("Morvix.exe");
    return std::make_unique<ProgramRun>(m_output, program, program, arguments, m_folder.Path());
}
