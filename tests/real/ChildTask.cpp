#include "ChildTask.h"

// The headers below need windows.h first.
#include <msi.h>
#include <setupapi.h>

#include <array>
#include <iostream>
#include <stdexcept>

#include "DebugOutput.h"
#include "EntryPoints.h"
#include "HexNumber.h"
#include "MountedDisc.h"
#include "ScratchDirectory.h"
#include "SystemLibrary.h"

namespace {
constexpr DWORD kLimit = 600000;

ChildReport RunAndReport(const std::string& program, const std::string& arguments)
{
    DebugOutput output;
    STARTUPINFOA startup{};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION started{};
    std::string commandLine = "\"" + program + "\" " + arguments;
    const std::string folder = program.substr(0, program.rfind('\\'));
    ChildReport report;
    if (CreateProcessA(program.c_str(), commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr, folder.c_str(),
                       &startup, &started) == FALSE) {
        report.values["error"] = std::to_string(GetLastError());
        return report;
    }
    const UniqueHandle process(started.hProcess);
    const UniqueHandle thread(started.hThread);
    DWORD exitCode = 0;
    if (WaitForSingleObject(process.get(), kLimit) != WAIT_OBJECT_0) {
        TerminateProcess(process.get(), 99);
        report.values["error"] = "it did not end";
    } else {
        GetExitCodeProcess(process.get(), &exitCode);
        report.values["exit"] = std::to_string(static_cast<int>(exitCode));
    }
    report.lines = output.LinesOf(started.dwProcessId);
    return report;
}

ChildReport StoreAndReport(const std::string& inf, bool mayAsk)
{
    const UniqueLibrary library = LoadSystemLibrary("setupapi.dll");
    const auto setMode = FindEntry<SetupSetNonInteractiveModeFn>(library.get(), "SetupSetNonInteractiveMode");
    const auto store = FindEntry<SetupCopyOEMInfFn>(library.get(), "SetupCopyOEMInfA");
    if (setMode == nullptr || store == nullptr) {
        return {.values = {{"error", "this system lacks the functions"}}, .lines = {}};
    }
    setMode(mayAsk ? FALSE : TRUE);
    std::array<char, MAX_PATH> storedAs{};
    PSTR name = nullptr;
    const BOOL stored = store(inf.c_str(), inf.substr(0, inf.rfind('\\')).c_str(), SPOST_PATH, SP_COPY_NOOVERWRITE,
                              storedAs.data(), MAX_PATH, nullptr, &name);
    const DWORD error = GetLastError();
    return {.values = {{"stored", stored != FALSE ? "yes" : "no"},
                       {"error", Hex(error)},
                       {"name", stored != FALSE && name != nullptr ? name : ""}},
            .lines = {}};
}

ChildReport RepairAndReport(const std::string& product, const std::string& log)
{
    constexpr DWORD kSelfRepair = REINSTALLMODE_FILEMISSING | REINSTALLMODE_FILEOLDERVERSION |
                                  REINSTALLMODE_FILEVERIFY | REINSTALLMODE_MACHINEDATA | REINSTALLMODE_USERDATA |
                                  REINSTALLMODE_SHORTCUT;
    const UniqueLibrary library = LoadSystemLibrary("msi.dll");
    const auto setInterface = FindEntry<decltype(&MsiSetInternalUI)>(library.get(), "MsiSetInternalUI");
    const auto enableLog = FindEntry<decltype(&MsiEnableLogA)>(library.get(), "MsiEnableLogA");
    const auto reinstall = FindEntry<decltype(&MsiReinstallFeatureA)>(library.get(), "MsiReinstallFeatureA");
    if (setInterface == nullptr || enableLog == nullptr || reinstall == nullptr) {
        return {.values = {{"error", "this system lacks the functions"}}, .lines = {}};
    }
    setInterface(INSTALLUILEVEL_NONE, nullptr);
    enableLog(INSTALLLOGMODE_VERBOSE | INSTALLLOGMODE_INFO | INSTALLLOGMODE_ERROR | INSTALLLOGMODE_ACTIONDATA,
              log.c_str(), 0);
    return {.values = {{"error", std::to_string(reinstall(product.c_str(), "Morvix", kSelfRepair))}}, .lines = {}};
}

ChildReport DoTask(const std::string& task, const std::vector<std::string>& arguments)
{
    if (task == "run" || task == "start") {
        if (task == "run") {
            SetEnvironmentVariableA("__COMPAT_LAYER", "RunAsInvoker");
        }
        return RunAndReport(arguments.at(0), arguments.at(1));
    }
    if (task == "store") {
        return StoreAndReport(arguments.at(0), arguments.at(1) == "asking");
    }
    if (task == "disc") {
        WriteFileBytes(arguments.at(1), DiscOf(arguments.at(0)));
        return {};
    }
    if (task == "self-repair") {
        return RepairAndReport(arguments.at(0), arguments.at(1));
    }
    throw std::runtime_error("no such task: " + task);
}
} // namespace

int RunChildTask(const std::vector<std::string>& arguments)
{
    try {
        const std::string& report = arguments.at(1);
        WriteFileBytes(report + ".new",
                       EncodeReport(DoTask(arguments.at(0), {arguments.begin() + 2, arguments.end()})));
        // Whoever waits for the report finds it whole.
        return MoveFileA((report + ".new").c_str(), report.c_str()) != FALSE ? 0 : 1;
    } catch (const std::exception& error) {
        std::cerr << error.what() << "\n";
        return 1;
    }
}

std::string ChildCommandLine(const std::string& program, const std::string& report,
                             const std::vector<std::string>& taskAndArguments)
{
    std::string line = "\"" + program + "\" " + kChildArgument + " " + taskAndArguments.at(0) + " \"" + report + "\"";
    for (std::size_t i = 1; i < taskAndArguments.size(); ++i) {
        line += " \"" + taskAndArguments[i] + "\"";
    }
    return line;
}

std::string OwnProgram()
{
    std::array<char, MAX_PATH> path{};
    GetModuleFileNameA(nullptr, path.data(), MAX_PATH);
    return path.data();
}

ChildReport WaitForReport(HANDLE process, const std::string& report)
{
    if (WaitForSingleObject(process, kLimit) != WAIT_OBJECT_0) {
        TerminateProcess(process, 99);
        throw std::runtime_error("the child did not end");
    }
    return DecodeReport(ReadFileBytes(report));
}
