#include "MatrixMachine.h"

#include <windows.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <iterator>
#include <stdexcept>

#include "CleanMachine.h"
#include "Environment.h"
#include "Handles.h"
#include "RegistryKeys.h"

namespace {
constexpr char kVendorKey[] = R"(SOFTWARE\Norda)";
constexpr char kDebugKey[] = R"(SOFTWARE\Norda\Basedrivers\Debug)";
constexpr char kSetupKey[] = R"(Software\Microsoft\Windows\CurrentVersion\Setup)";
constexpr char kSourcePathValue[] = "SourcePath";
// Where Windows 98 and Me list their devices.
constexpr char kLegacyDevices[] = "Enum";
// The answer that the run reports as "some drivers could not be installed".
constexpr char kCouldNotInstall[] = "0xE0000207";
constexpr char kNotServed[] = "0x80640013";

std::string SpareFolder(const MatrixSystem& system)
{
    return std::string("Spare\\") + system.section;
}

// One system for each section of the setup INI: some share theirs.
std::vector<const MatrixSystem*> SystemsWithSections()
{
    std::vector<const MatrixSystem*> systems;
    for (const MatrixSystem& system : kMatrixSystems) {
        const bool known = std::ranges::any_of(
            systems, [&](const MatrixSystem* other) { return std::string(other->section) == system.section; });
        if (system.hasDrivers && !known) {
            systems.push_back(&system);
        }
    }
    return systems;
}

// Each section names a directory of its own, so that a run that reads the wrong one finds out.
std::string SetupIni()
{
    std::string text = "[Config]\r\nLevelsToRoot=0\r\n";
    for (const MatrixSystem* system : SystemsWithSections()) {
        text += std::string("[") + system->section + "]\r\nInfSectionName=" + system->modelSection +
                "\r\nInfDir=" + SpareFolder(*system) + "\r\nInfDir=Drv\\" + system->kit.folder +
                "\r\nInfExclude=" + kSpareInf + "\r\n";
    }
    return text;
}

// The kit's 10 gigabit driver once more, as one for the served adapter.
void AddSpareInf(const RunFolder& folder, const MatrixSystem& system)
{
    const std::string kit = std::string("Drv\\") + system.kit.folder + "\\nxga" + system.kit.number + "x64";
    const std::string listed = "DEV_1B3C&SUBSYS_00015D1A";
    std::string inf = ReadFileBytes(folder.At(kit + ".inf"));
    size_t replaced = 0;
    for (size_t at = inf.find(listed); at != std::string::npos; at = inf.find(listed)) {
        inf.replace(at, listed.size(), std::string(kServedDevice).substr(std::string("VEN_5D1A&").size()));
        ++replaced;
    }
    if (replaced == 0) {
        throw std::runtime_error(kit + ".inf does not list the device that it should");
    }
    const std::string spare = SpareFolder(system) + "\\";
    folder.Write(spare + kSpareInf, inf);
    // The driver store takes no INF file without the catalog that it names.
    CopyFileTo(folder.At(kit + ".cat"), folder.At(spare + "nxga" + system.kit.number + "x64.cat"));
    const std::string driver = KitDriverFile("nxga", system.kit);
    CopyFileTo(folder.At(std::string("Drv\\") + system.kit.folder + "\\" + driver), folder.At(spare + driver));
}

void RemoveDriverFiles(const RunFolder& folder)
{
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder.Path())) {
        if (entry.path().extension() == ".sys") {
            files.push_back(entry.path());
        }
    }
    for (const std::filesystem::path& file : files) {
        std::filesystem::remove(file);
    }
}

std::unique_ptr<RunFolder> MakeFolder(Machine machine)
{
    auto folder = std::make_unique<RunFolder>();
    folder->Write("Morvix.ini", SetupIni());
    for (const MatrixSystem* system : SystemsWithSections()) {
        AddSpareInf(*folder, *system);
    }
    folder->UseDouble("srclient.dll");
    folder->Answer("srclient", "Sequence", "1");
    folder->UseDouble("Rundll.exe");
    if (machine == Machine::InterfaceRefuses) {
        folder->UseDouble("NetInst.dll");
        folder->Answer("NetInst", "InstallStatus1", kCouldNotInstall);
        folder->Answer("NetInst", "LastError1", kCouldNotInstall);
    } else if (machine == Machine::FilesMissing) {
        RemoveDriverFiles(*folder);
    }
    return folder;
}

// Only two machines need something else in the folder.
Machine FolderKind(const MatrixRow& row)
{
    const bool ownFolder = row.machine == Machine::InterfaceRefuses || row.machine == Machine::FilesMissing;
    return ownFolder ? row.machine : Machine::Match;
}

// Names and sizes of everything below a run folder except the doubles' journals and answers.
std::vector<std::string> ContentOf(const std::string& folder)
{
    std::vector<std::string> content;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
        const std::string name = entry.path().filename().string();
        if (name != "journal.txt" && name != "NetInst.answers.ini") {
            content.push_back(entry.path().string() +
                              (entry.is_regular_file() ? " " + std::to_string(entry.file_size()) : ""));
        }
    }
    std::ranges::sort(content);
    return content;
}

std::string Join(const std::string& key, const std::string& name)
{
    return key.empty() ? name : key + "\\" + name;
}

std::string TypeName(DWORD type)
{
    switch (type) {
        case REG_SZ:
            return "REG_SZ";
        case REG_EXPAND_SZ:
            return "REG_EXPAND_SZ";
        case REG_DWORD:
            return "REG_DWORD";
        default:
            return std::to_string(type);
    }
}

std::vector<std::string> ValueNames(const std::string& key)
{
    std::vector<std::string> names;
    HKEY opened = nullptr;
    if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, key.c_str(), 0, KEY_READ, &opened) != ERROR_SUCCESS) {
        return names;
    }
    const UniqueRegKey owner(opened);
    std::array<char, 256> name{};
    for (DWORD size = name.size(), index = 0;
         RegEnumValueA(opened, index, name.data(), &size, nullptr, nullptr, nullptr, nullptr) == ERROR_SUCCESS;
         ++index, size = name.size()) {
        names.emplace_back(name.data());
    }
    return names;
}

void AddRegistryLines(const std::string& below, std::vector<std::string>& lines)
{
    const std::string key = Join(kVendorKey, below);
    for (const std::string& name : ValueNames(key)) {
        const std::optional<RegistryValue> value = ReadRegistryValue(key, name);
        lines.push_back(below + ": " + name + " (" + TypeName(value ? value->type : 0) + ") " +
                        (value ? value->Text() : "cannot be read"));
    }
    for (const std::string& sub : RegistrySubKeys(key)) {
        lines.push_back("[" + Join(below, sub) + "]");
        AddRegistryLines(Join(below, sub), lines);
    }
}

// The names below both folders that are alike.
std::vector<std::string> InBoth(const std::string& extension, const std::string& folder,
                                const std::vector<std::string>& more)
{
    std::vector<std::string> names = more;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(DistFolder())) {
        if (entry.path().extension() == extension) {
            names.push_back(entry.path().filename().string());
        }
    }
    std::ranges::sort(names);
    const auto repeated = std::ranges::unique(names);
    names.erase(repeated.begin(), repeated.end());
    std::erase_if(names, [&](const std::string& name) { return !FileExists(folder + "\\" + name); });
    return names;
}

void RemoveStagingFolder()
{
    const std::string folder = MatrixMachine::StagingFolder();
    for (const std::string& name : FilesMatching(folder + "\\*.*")) {
        DeleteFileA((folder + "\\" + name).c_str());
    }
    RemoveDirectoryA(folder.c_str());
}

void SetSourcePath(const std::string& path)
{
    if (path == "<none>") {
        HKEY opened = nullptr;
        if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, kSetupKey, 0, KEY_SET_VALUE, &opened) == ERROR_SUCCESS) {
            const UniqueRegKey owner(opened);
            RegDeleteValueA(opened, kSourcePathValue);
        }
        return;
    }
    SetRegistryText(kSetupKey, kSourcePathValue, path);
}
} // namespace

RunFolder& MatrixFolders::For(const MatrixRow& row)
{
    const Machine kind = FolderKind(row);
    Made& made = m_folders[kind];
    if (!made.folder) {
        made = {MakeFolder(kind), {}};
        made.content = ContentOf(made.folder->Path());
    }
    const std::unique_ptr<RunFolder>& folder = made.folder;
    DeleteFileA(folder->At("journal.txt").c_str());
    if (kind == Machine::InterfaceRefuses) {
        // A double reports the configured answer on every system.
        folder->Answer("NetInst", "Family", row.system->family);
        folder->Answer("NetInst", "ProberStatus", row.system->flow == Flow::Refused ? kNotServed : "0");
    }
    return *folder;
}

std::vector<std::string> MatrixFolders::ChangesIn(const MatrixRow& row) const
{
    const Made& made = m_folders.at(FolderKind(row));
    const std::vector<std::string> now = ContentOf(made.folder->Path());
    std::vector<std::string> changes;
    std::ranges::set_symmetric_difference(made.content, now, std::back_inserter(changes));
    return changes;
}

MatrixMachine::Cleaning::Cleaning()
{
    CleanTheMachine();
    DeleteRegistryTree(kLegacyDevices);
    RemoveStagingFolder();
}

MatrixMachine::Cleaning::~Cleaning()
{
    CleanTheMachine();
    DeleteRegistryTree(kLegacyDevices);
    RemoveStagingFolder();
}

MatrixMachine::MatrixMachine(const MatrixRow& row, const ExpectedRun& expected)
    : m_system(row.system->version), m_sourceBefore(SourcePath())
{
    CreateRegistryKey(kDebugKey);
    SetRegistryNumber(kResultsKey, "RebootNeeded", 1);
    SetSourcePath(m_source.Path());
    const std::string legacyPci = Join(kLegacyDevices, "PCI");
    CreateRegistryKey(legacyPci);
    if (row.machine != Machine::NoAdapter) {
        const char* device = row.machine == Machine::NoMatch ? kUnknownDevice : kServedDevice;
        m_adapter.emplace(device);
        CreateRegistryKey(legacyPci + "\\" + device + "\\BUS_00&DEV_08");
    }
    for (const ExpectedFile& file : expected.filesBefore) {
        CopyFileTo(DistFolder() + "\\" + file.kitPath, DriverPath(file.name));
    }
}

MatrixMachine::~MatrixMachine()
{
    SetSourcePath(m_sourceBefore);
}

std::vector<std::string> MatrixMachine::RegistryLines()
{
    std::vector<std::string> lines;
    AddRegistryLines("", lines);
    return lines;
}

std::vector<std::string> MatrixMachine::DriverFiles()
{
    return InBoth(".sys", SystemDirectory() + "\\drivers", {});
}

std::vector<std::string> MatrixMachine::StoredInfs()
{
    return InBoth(".inf", WindowsDirectory() + "\\inf", {kSpareInf});
}

std::string MatrixMachine::SourcePath()
{
    return ReadRegistryText(kSetupKey, kSourcePathValue);
}

std::string MatrixMachine::StagingFolder()
{
    return WindowsDirectory() + "\\INSTALL";
}
