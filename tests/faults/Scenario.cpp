#include "Scenario.h"

#include <algorithm>

#include "Adapter.h"
#include "CleanMachine.h"
#include "Environment.h"
#include "OwnInfs.h"
#include "RegistryKeys.h"

namespace {
constexpr char kBasedrivers[] = R"(SOFTWARE\Norda\Basedrivers)";

std::string Printable(const RegistryValue& value)
{
    constexpr char kDigits[] = "0123456789ABCDEF";
    std::string text = "type " + std::to_string(value.type) + " ";
    for (const char c : value.bytes) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte >= 0x20 && byte < 0x7F) {
            text += c;
        } else {
            text += std::string{'<', kDigits[byte >> 4], kDigits[byte & 15], '>'};
        }
    }
    return text;
}

std::vector<std::string> ValueNames(const std::string& key)
{
    std::vector<std::string> names;
    HKEY opened = nullptr;
    if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, key.c_str(), 0, KEY_READ, &opened) == ERROR_SUCCESS) {
        const UniqueRegKey owner(opened);
        char name[512];
        for (DWORD index = 0, length = sizeof(name);
             RegEnumValueA(opened, index, name, &length, nullptr, nullptr, nullptr, nullptr) == ERROR_SUCCESS;
             ++index, length = sizeof(name)) {
            names.emplace_back(name);
        }
    }
    std::ranges::sort(names);
    return names;
}
} // namespace

std::vector<std::string> RegistryContent(const std::string& key)
{
    std::vector<std::string> lines;
    for (const std::string& name : ValueNames(key)) {
        if (const std::optional<RegistryValue> value = ReadRegistryValue(key, name)) {
            lines.push_back("left: " + key + "\\\\" + name + " " + Printable(*value));
        }
    }
    std::vector<std::string> subKeys = RegistrySubKeys(key);
    std::ranges::sort(subKeys);
    for (const std::string& subKey : subKeys) {
        const std::vector<std::string> below = RegistryContent(key + "\\" + subKey);
        lines.insert(lines.end(), below.begin(), below.end());
    }
    return lines;
}

Scenario::Cleaning::Cleaning()
{
    CleanTheMachine();
}

Scenario::Cleaning::~Cleaning()
{
    CleanTheMachine();
}

Scenario::Scenario(std::string arguments, bool interactive)
{
    m_start.folder = m_folder.Path();
    m_start.arguments = std::move(arguments);
    m_start.interactive = interactive;
    const std::string built = DoublesFolder() + R"(\..\faults\)";
    CopyFileTo(built + "morvix_faulted.exe", m_folder.At("Morvix.exe"));
    CopyFileTo(built + "fault_hooks.dll", m_folder.At("fault_hooks.dll"));
    m_folder.UseDouble("NetInst.dll");
    m_folder.WriteSetupIni({std::string("InfSectionName=") + kModelSection, "InfDir=Inf"});
}

Scenario::~Scenario() = default;

Outcome Scenario::Run(const Fault& fault, bool noteMemory)
{
    DeleteRegistryTree(kBasedrivers);
    DeleteRegistryTree(R"(SOFTWARE\Norda\MSI)");
    DeleteRegistryTree(R"(SOFTWARE\Norda\Tavunstl)");
    CreateRegistryKey(std::string(kBasedrivers) + "\\Debug");
    DeleteFileA(m_folder.At("journal.txt").c_str());
    const std::string uninstallFile = SystemDirectory() + "\\Morvix.din";
    DeleteFileA(uninstallFile.c_str());
    Reset();

    m_start.noteMemory = noteMemory;
    Outcome outcome = m_program.Run(m_start, fault);

    std::vector<std::string> journal = m_folder.Journal();
    // The main thread asks this at its end, before or after the last question of the install thread.
    std::ranges::stable_partition(journal,
                                  [](const std::string& line) { return line != "GetIScsiVersionInformation"; });
    for (std::string line : journal) {
        // A field that is mostly empty.
        constexpr std::string_view kZeros = "00000000";
        if (line.ends_with(kZeros)) {
            line = line.substr(0, line.find_last_not_of('0') + 1) + "0...";
        }
        outcome.lines.push_back("asked: " + WithStandIns(line, m_folder.Path()));
    }
    for (const std::string& line : RegistryContent(R"(SOFTWARE\Norda)")) {
        outcome.lines.push_back(WithStandIns(line, m_folder.Path()));
    }
    if (FileExists(uninstallFile)) {
        outcome.lines.emplace_back("left: uninstall file");
    }
    for (const std::string& line : State()) {
        outcome.lines.push_back(WithStandIns(line, m_folder.Path()));
    }
    return outcome;
}
