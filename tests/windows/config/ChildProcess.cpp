#include "ChildProcess.h"

#include <windows.h>

#include <array>
#include <fstream>
#include <functional>
#include <sstream>
#include <stdexcept>

#include "DebugOutput.h"
#include "Handles.h"
#include "InfStore.h"
#include "OSLanguage.h"
#include "OSVersion.h"
#include "ScratchDirectory.h"

namespace {
constexpr DWORD kLimitMilliseconds = 60000;
constexpr char kTracePrefix[] = "trace ";

std::string OneLine(const std::string& text)
{
    std::string line;
    for (const char c : text) {
        line += c == '\n' ? std::string("\\n") : c == '\r' ? std::string("\\r") : std::string(1, c);
    }
    return line;
}

std::string ManyLines(std::string line)
{
    for (const auto& [from, to] : {std::pair<std::string, std::string>{"\\n", "\n"}, {"\\r", "\r"}}) {
        for (auto place = line.find(from); place != std::string::npos; place = line.find(from)) {
            line.replace(place, from.size(), to);
        }
    }
    return line;
}

std::string OwnPath()
{
    std::array<char, MAX_PATH> path{};
    GetModuleFileNameA(nullptr, path.data(), MAX_PATH);
    return path.data();
}

/// Gives programs named `exeName` a Windows version and forms of libraries for the life of the object.
class GivenDefaults
{
public:
    GivenDefaults(const std::string& exeName, const ChildOptions& options)
        : m_key("Software\\Wine\\AppDefaults\\" + exeName), m_libraryKey(m_key + "\\DllOverrides")
    {
        Delete();
        if (!options.windowsVersion.empty()) {
            SetText(m_key, "Version", options.windowsVersion);
        }
        for (const auto& [library, form] : options.libraries) {
            SetText(m_libraryKey, library, form);
        }
    }
    ~GivenDefaults() { Delete(); }
    GivenDefaults(const GivenDefaults&) = delete;
    GivenDefaults& operator=(const GivenDefaults&) = delete;

private:
    static void SetText(const std::string& path, const std::string& name, const std::string& text)
    {
        HKEY key = nullptr;
        if (RegCreateKeyA(HKEY_CURRENT_USER, path.c_str(), &key) != ERROR_SUCCESS) {
            throw std::runtime_error("cannot create " + path);
        }
        const UniqueRegKey owner(key);
        RegSetValueExA(key, name.c_str(), 0, REG_SZ, reinterpret_cast<const BYTE*>(text.c_str()),
                       static_cast<DWORD>(text.size() + 1));
    }
    void Delete() const
    {
        RegDeleteKeyA(HKEY_CURRENT_USER, m_libraryKey.c_str());
        RegDeleteKeyA(HKEY_CURRENT_USER, m_key.c_str());
    }

    std::string m_key;
    std::string m_libraryKey;
};

void StartAndWait(std::string commandLine)
{
    STARTUPINFOA startup{};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION process{};
    if (CreateProcessA(nullptr, commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &process) ==
        FALSE) {
        throw std::runtime_error("cannot start " + commandLine);
    }
    const UniqueHandle processOwner(process.hProcess);
    const UniqueHandle threadOwner(process.hThread);
    DWORD exitCode = 1;
    if (WaitForSingleObject(process.hProcess, kLimitMilliseconds) != WAIT_OBJECT_0 ||
        GetExitCodeProcess(process.hProcess, &exitCode) == FALSE || exitCode != 0) {
        TerminateProcess(process.hProcess, 1);
        throw std::runtime_error("the child failed: " + commandLine);
    }
}

using Values = std::map<std::string, std::string>;

Values ReportSystem()
{
    const COSVersion version;
    const SystemFacts facts = version.Facts();
    uint32_t servicePack = 99;
    const bool hasServicePack = version.GetWin2K3ServicePack(servicePack);
    Values values{
        {"code", std::to_string(version.GetOSCode())},
        {"valid", std::to_string(facts.valid)},
        {"major", std::to_string(facts.majorVersion)},
        {"minor", std::to_string(facts.minorVersion)},
        {"platform", std::to_string(facts.platform)},
        {"product", std::to_string(facts.productType)},
        {"servicePackMajor", std::to_string(facts.servicePackMajor)},
        {"architecture", facts.architecture ? std::to_string(*facts.architecture) : "unknown"},
        {"GetWin2K3ServicePack", std::to_string(hasServicePack) + " " + std::to_string(servicePack)},
        {"IsSixOne", std::to_string(PlatformVerifier().IsSixOne())},
        {"IsSixTwoOrLater", std::to_string(PlatformVerifier().IsSixTwoOrLater())},
        {"GetOSGeneration", std::to_string(GetOSGeneration())},
        {"IsIA64", std::to_string(version.IsIA64())},
        {"IsX64", std::to_string(version.IsX64())},
        {"IsNT5OrLater", std::to_string(version.IsNT5OrLater())},
        {"IsNT6OrLater", std::to_string(version.IsNT6OrLater())},
        {"IsXPOrLater", std::to_string(version.IsXPOrLater())},
        {"IsServerOrVistaLater", std::to_string(version.IsServerOrVistaLater())},
        {"IsWin2K3Family", std::to_string(version.IsWin2K3Family())},
        {"IsWin2K8Family", std::to_string(version.IsWin2K8Family())},
        {"IsWin7Family", std::to_string(version.IsWin7Family())},
        {"IsWin8Family", std::to_string(version.IsWin8Family())},
        {"IsWin2K8R2Family", std::to_string(version.IsWin2K8R2Family())},
        {"IsWin8OrLater", std::to_string(version.IsWin8OrLater())},
        {"IsVistaFamily", std::to_string(version.IsVistaFamily())},
        {"IsWin8Workstation", std::to_string(version.IsWin8Workstation())},
        {"IsWin8Server", std::to_string(version.IsWin8Server())},
        {"IsVistaWorkstation", std::to_string(version.IsVistaWorkstation())},
        {"IsServerCore", std::to_string(version.IsServerCore())},
        {"IsXPWorkstation", std::to_string(version.IsXPWorkstation())},
        {"IsModernServer", std::to_string(version.IsModernServer())},
        {"IsWorkstationOS", std::to_string(version.IsWorkstationOS())},
        {"IsNT4TerminalServer", std::to_string(IsNT4TerminalServer())},
    };
    // The shell program is gone from where the variable says.
    const ScratchDirectory noShell;
    SetEnvironmentVariableA("SYSTEMROOT", noShell.Path().c_str());
    values["IsServerCore without a shell"] = std::to_string(version.IsServerCore());
    return values;
}

Values ReportLanguage()
{
    std::array<char, 8> code{};
    const uint16_t id = GetOSLanguageID(code.data(), code.size());
    return {{"system", std::to_string(GetSystemDefaultLangID())}, {"id", std::to_string(id)}, {"code", code.data()}};
}
} // namespace

ChildReport RunChild(const std::string& task, const ChildOptions& options)
{
    const std::string exeName = "morvix-config-child.exe";
    const ScratchDirectory directory;
    CopyFileTo(OwnPath(), directory.At(exeName));
    if (!options.ownCopyAs.empty()) {
        CopyFileTo(OwnPath(), directory.At(options.ownCopyAs));
    }
    const GivenDefaults defaults(exeName, options);
    std::string commandLine =
        "\"" + directory.At(exeName) + "\" " + kChildArgument + " " + task + " \"" + directory.At("report.txt") + "\"";
    for (const std::string& argument : options.arguments) {
        commandLine += " \"" + argument + "\"";
    }
    StartAndWait(commandLine);

    ChildReport report;
    std::istringstream lines(ReadFileBytes(directory.At("report.txt")));
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with(kTracePrefix)) {
            report.trace.push_back(ManyLines(line.substr(sizeof(kTracePrefix) - 1)));
        } else {
            report.values[line.substr(0, line.find('='))] = line.substr(line.find('=') + 1);
        }
    }
    return report;
}

int RunChildTask(const std::vector<std::string>& commandLine)
{
    const std::string task = commandLine.at(0);
    const std::map<std::string, std::function<Values()>> tasks{
        {"system", &ReportSystem},
        {"language", &ReportLanguage},
        {"copy-inf",
         [&commandLine] {
             return Values{{"result", std::to_string(SetupCopyInf(commandLine.at(2), commandLine.at(3)))}};
         }},
    };
    TraceCapture trace;
    const Values values = tasks.at(task)();
    std::string report;
    for (const auto& [name, value] : values) {
        report += name + "=" + value + "\n";
    }
    for (const std::string& line : trace.Messages()) {
        report += kTracePrefix + OneLine(line) + "\n";
    }
    WriteFileBytes(commandLine.at(1), report);
    return 0;
}
