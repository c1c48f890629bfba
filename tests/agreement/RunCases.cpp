// Runs the shipped program on kits and machines that are laid out in folders, one after the other in one Windows, and
// leaves in each folder what the run traced and an export of the registry that it met.
//
//   agreement_runs CASES MORVIX_KIT     CASES holds a folder for each case, MORVIX_KIT is the path of morvix-kit.exe.
//
// The file case.txt describes a case, a line for each fact, with tabs between the parts:
//   system   version, build and product type
//   setup    the folder of Morvix.exe below the case
//   options  command line of Morvix.exe
//   live     options of morvix-kit, which then plans this machine itself too
//   device   key name of a PCI device
//   value    device, instance, name, type and bytes (hexadecimal) of a registry value; without a name only the instance

#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <map>
#include <optional>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "DebugOutput.h"
#include "EmulatedSystem.h"
#include "Environment.h"
#include "Handles.h"
#include "ProgramRun.h"
#include "RegistryKeys.h"
#include "ScratchDirectory.h"

namespace {
constexpr char kPciKey[] = R"(SYSTEM\CurrentControlSet\Enum\PCI)";
constexpr char kVersionKey[] = R"(SOFTWARE\Microsoft\Windows NT\CurrentVersion)";
constexpr DWORD kHelperLimit = 120000;

struct RegistryEntry
{
    std::string device;
    std::string instance;
    std::string name;
    DWORD type = REG_NONE;
    std::string bytes;
};

struct Case
{
    std::string folder;
    std::string version, build, product;
    std::string setup;
    std::string options;
    std::optional<std::string> liveOptions;
    std::set<std::string> devices;
    std::vector<RegistryEntry> entries;
};

std::vector<std::string> Parts(const std::string& line)
{
    std::vector<std::string> parts;
    std::istringstream text(line);
    for (std::string part; std::getline(text, part, '\t');) {
        parts.push_back(part);
    }
    parts.resize(std::max<size_t>(parts.size(), 6));
    return parts;
}

std::string FromHex(const std::string& digits)
{
    std::string bytes;
    for (size_t at = 0; at + 1 < digits.size(); at += 2) {
        bytes += static_cast<char>(std::stoi(digits.substr(at, 2), nullptr, 16));
    }
    return bytes;
}

Case ReadCase(const std::string& folder)
{
    Case read;
    read.folder = folder;
    std::istringstream text(ReadFileBytes(folder + "\\case.txt"));
    for (std::string line; std::getline(text, line);) {
        const std::vector<std::string> part = Parts(line);
        if (part[0] == "system") {
            read.version = part[1];
            read.build = part[2];
            read.product = part[3];
        } else if (part[0] == "setup") {
            read.setup = folder + "\\" + part[1];
        } else if (part[0] == "options") {
            read.options = part[1];
        } else if (part[0] == "live") {
            read.liveOptions = part[1];
        } else if (part[0] == "device") {
            read.devices.insert(part[1]);
        } else if (part[0] == "value") {
            const DWORD type = part[4].empty() ? DWORD{REG_NONE} : static_cast<DWORD>(std::stoul(part[4]));
            read.entries.push_back({part[1], part[2], part[3], type, FromHex(part[5])});
        } else {
            throw std::runtime_error("not understood: " + line);
        }
    }
    return read;
}

/// Runs a program to its end. Its output goes nowhere unless it writes files itself.
void RunHelper(const std::string& program, const std::string& arguments, const std::string& folder)
{
    const StartedProgram started = StartProgram(program, "\"" + program + "\" " + arguments, folder);
    if (WaitForSingleObject(started.process.get(), kHelperLimit) != WAIT_OBJECT_0) {
        TerminateProcess(started.process.get(), 99);
        throw std::runtime_error("did not end: " + program + " " + arguments);
    }
}

void ExportKey(const std::string& key, const std::string& file)
{
    DeleteFileA(file.c_str());
    RunHelper(SystemDirectory() + "\\reg.exe", "export \"HKLM\\" + key + "\" \"" + file + "\" /y", WindowsDirectory());
    if (!FileExists(file)) {
        throw std::runtime_error("no export of " + key);
    }
}

/// @return the first key of an export in UTF-16: what is below it can be long, and describes no system.
std::string WithoutSubKeys(const std::string& text)
{
    const std::string keyStarts("\n\0[\0", 4);
    const size_t first = text.find(keyStarts);
    return text.substr(0, first == std::string::npos ? first : text.find(keyStarts, first + 1));
}

/// The PCI devices of one case, beside those of the machine.
class Devices
{
public:
    explicit Devices(const Case& made) : m_names(made.devices)
    {
        for (const std::string& name : m_names) {
            CreateRegistryKey(std::string(kPciKey) + "\\" + name);
        }
        for (const RegistryEntry& entry : made.entries) {
            const std::string key = std::string(kPciKey) + "\\" + entry.device + "\\" + entry.instance;
            CreateRegistryKey(key);
            if (!entry.name.empty()) {
                SetWideBytes(key, entry);
            }
        }
    }
    ~Devices()
    {
        for (const std::string& name : m_names) {
            DeleteRegistryTree(std::string(kPciKey) + "\\" + name);
        }
    }
    Devices(const Devices&) = delete;
    Devices& operator=(const Devices&) = delete;

private:
    // The stored bytes as they are, so that texts may lack their end.
    static void SetWideBytes(const std::string& key, const RegistryEntry& entry)
    {
        HKEY opened = nullptr;
        RegOpenKeyExA(HKEY_LOCAL_MACHINE, key.c_str(), 0, KEY_SET_VALUE, &opened);
        const UniqueRegKey owner(opened);
        const std::wstring name(entry.name.begin(), entry.name.end());
        if (RegSetValueExW(opened, name.c_str(), 0, entry.type, reinterpret_cast<const BYTE*>(entry.bytes.data()),
                           static_cast<DWORD>(entry.bytes.size())) != ERROR_SUCCESS) {
            throw std::runtime_error("cannot set " + key + "\\" + entry.name);
        }
    }

    std::set<std::string> m_names;
};

/// Removes what the driver store of this Windows gets while the object lives.
class StoreWatch
{
public:
    StoreWatch() : m_before(Names()) {}
    ~StoreWatch()
    {
        for (const std::string& name : Names()) {
            if (!m_before.contains(name)) {
                DeleteFileA((WindowsDirectory() + "\\inf\\" + name).c_str());
            }
        }
    }
    StoreWatch(const StoreWatch&) = delete;
    StoreWatch& operator=(const StoreWatch&) = delete;

private:
    static std::set<std::string> Names()
    {
        const std::vector<std::string> names = FilesMatching(WindowsDirectory() + "\\inf\\*");
        return {names.begin(), names.end()};
    }

    std::set<std::string> m_before;
};

class Runner
{
public:
    explicit Runner(std::string morvixKit) : m_morvixKit(std::move(morvixKit)) {}

    void Run(const Case& made)
    {
        const EmulatedSystem system({nullptr, made.version.c_str(), made.build.c_str(), made.product.c_str()});
        const Devices devices(made);
        const StoreWatch store;
        DeleteRegistryTree(R"(SOFTWARE\Norda)");
        CreateRegistryKey(R"(SOFTWARE\Norda\Basedrivers\Debug)");
        WriteFileBytes(made.folder + "\\machine.reg", SystemExport(made));
        ExportKey(kPciKey, made.folder + "\\devices.reg");
        if (made.liveOptions) {
            RunHelper(m_morvixKit,
                      "plan . live " + *made.liveOptions + " --setup-dir \"" + made.setup + "\" --output \"" +
                          made.folder + "\\live.txt\"",
                      made.setup);
        }
        RunMorvix(made);
    }

private:
    void RunMorvix(const Case& made)
    {
        const std::string program = made.setup + "\\Morvix.exe";
        ProgramRun run(m_output, program, program, made.options, made.setup);
        const FinishedRun finished = run.Finish();
        std::string trace;
        for (const std::string& line : finished.lines) {
            trace += line + '\0';
        }
        WriteFileBytes(made.folder + "\\run.trace", trace);
        m_output.Clear();
    }

    /// What describes the system itself. Exported once for each system: only the devices differ between its cases.
    const std::string& SystemExport(const Case& made)
    {
        std::string& text = m_systems[made.version + made.product];
        if (text.empty()) {
            const ScratchDirectory folder;
            for (const char* key : {kVersionKey, R"(SYSTEM\CurrentControlSet\Control\ProductOptions)",
                                    R"(SYSTEM\CurrentControlSet\Control\Session Manager\Environment)",
                                    R"(SYSTEM\CurrentControlSet\Control\Nls\CodePage)"}) {
                ExportKey(key, folder.At("part.reg"));
                text += WithoutSubKeys(ReadFileBytes(folder.At("part.reg")));
            }
        }
        return text;
    }

    const std::string m_morvixKit;
    DebugOutput m_output;
    std::map<std::string, std::string> m_systems;
};
} // namespace

int main(int argc, char** argv)
{
    if (argc != 3) {
        std::fputs("usage: agreement_runs CASES MORVIX_KIT\n", stderr);
        return 2;
    }
    try {
        std::vector<std::string> folders;
        for (const auto& entry : std::filesystem::directory_iterator(argv[1])) {
            folders.push_back(entry.path().string());
        }
        std::ranges::sort(folders);
        EndEmulations();
        Runner runner(argv[2]);
        for (const std::string& folder : folders) {
            try {
                runner.Run(ReadCase(folder));
            } catch (const std::exception& error) {
                throw std::runtime_error(folder + ": " + error.what());
            }
        }
    } catch (const std::exception& error) {
        std::fprintf(stderr, "agreement_runs: %s\n", error.what());
        return 1;
    }
    return 0;
}
