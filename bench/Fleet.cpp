#include <array>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <random>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "KitText.h"
#include "OSCode.h"

// Writes a kit of 400 INF files for all systems and a fleet of machines, as registry exports of 100 KB in UTF-16:
//   FOLDER/kit, FOLDER/machines/PC00000.reg, ...
// Usage: bench_fleet FOLDER MACHINES
// The same arguments give the same bytes. As in a real fleet, the machines have one of a few hundred sets of adapters.

namespace {
constexpr int kInfFiles = 400;
constexpr int kModels = 60;
constexpr std::size_t kExportBytes = 100'000;
constexpr char kControlSet[] = R"(HKEY_LOCAL_MACHINE\SYSTEM\CurrentControlSet\)";
constexpr char kNetworkAdapters[] = "{4d36e972-e325-11ce-bfc1-08002be10318}";
constexpr char kSystemDevices[] = "{4d36e97d-e325-11ce-bfc1-08002be10318}";
// The widest line of bytes that reg.exe writes.
constexpr std::size_t kMostColumns = 80;

struct System
{
    std::string_view section;
    std::string_view version;
    std::string_view build;
    std::string_view product;
};
constexpr std::array kSystemsOfFleet = std::to_array<System>({
    {"WinVista32E", "6.0", "6002", "WinNT"},
    {"Win732E", "6.1", "7601", "WinNT"},
    {"WinSrv2K8R232E", "6.1", "7601", "ServerNT"},
    {"Win832E", "6.2", "9200", "WinNT"},
});

void WriteFile(const std::filesystem::path& path, std::string_view content)
{
    std::ofstream file(path, std::ios::binary);
    file.write(content.data(), static_cast<std::streamsize>(content.size()));
    file.close();
    if (!file) {
        throw std::runtime_error("cannot write " + path.string());
    }
}

void WriteKit(const std::filesystem::path& folder)
{
    std::filesystem::create_directories(folder / "Drv");
    std::string setup = "[Config]\r\nLevelsToRoot=0\r\n";
    std::set<std::string_view> sections;
    for (const SystemRow& row : kSystems) {
        if (!row.sectionKey.empty() && sections.insert(row.sectionKey).second) {
            setup += SystemSection(std::string(row.sectionKey));
        }
    }
    WriteFile(folder / "Morvix.ini", setup);
    for (int file = 0; file < kInfFiles; ++file) {
        WriteFile(folder / "Drv" / InfFileName(file), InfContent(file, {}));
    }
}

/// A list of texts as the bytes of a value, in lines as reg.exe breaks them.
std::string TextList(std::string_view name, const std::vector<std::string>& texts)
{
    std::string line = "\"" + std::string(name) + "\"=hex(7):";
    std::string lines;
    std::string bytes;
    for (const std::string& text : texts) {
        for (const char letter : text + '\0') {
            bytes += letter;
            bytes += '\0';
        }
    }
    bytes.append(2, '\0');
    for (std::size_t at = 0; at < bytes.size(); ++at) {
        std::array<char, 4> digits{};
        static_cast<void>(std::snprintf(digits.data(), digits.size(), "%02x", static_cast<unsigned char>(bytes[at])));
        line += digits.data();
        if (at + 1 == bytes.size()) {
            break;
        }
        line += ',';
        if (line.size() + 4 > kMostColumns) {
            lines += line + "\\\r\n";
            line = "  ";
        }
    }
    return lines + line + "\r\n";
}

/// Draws the same numbers with every standard library.
class Choice
{
public:
    explicit Choice(unsigned seed) : m_engine(seed) {}
    int Below(int limit) { return static_cast<int>(m_engine() % static_cast<unsigned>(limit)); }

private:
    std::mt19937 m_engine;
};

struct Card
{
    std::string vendor;
    std::string device;
    std::string subsystem;
    std::string revision;
    std::string classCode;
    std::string setupClass;
    std::string classGuid;
    std::string description;
    std::string service;
};

std::string KeyNameOf(const Card& card)
{
    return "VEN_" + card.vendor + "&DEV_" + card.device + "&SUBSYS_" + card.subsystem + "&REV_" + card.revision;
}

/// One of the maker's adapters: two of three are listed in some INF.
Card Adapter(int model)
{
    const bool isListed = model % 3 != 0;
    return {.vendor = "5D1A",
            .device = Hexadecimal(isListed ? model * 2 : 0x7000 + model),
            .subsystem = Hexadecimal(model * 6) + "5D1A",
            .revision = "0" + std::to_string(model % 4),
            .classCode = "0200",
            .setupClass = "Net",
            .classGuid = kNetworkAdapters,
            .description = "Norda Network Adapter",
            .service = "ngea"};
}

/// What else is in a machine.
Card OtherCard(int number)
{
    return {.vendor = "7" + Hexadecimal(number / 8).substr(1),
            .device = Hexadecimal(0x2900 + number),
            .subsystem = Hexadecimal(0x100 + number) + "1D0C",
            .revision = "0" + std::to_string(number % 3),
            .classCode = "0C03",
            .setupClass = "System",
            .classGuid = kSystemDevices,
            .description = "@machine.inf,%pci\\\\ven_" + Hexadecimal(number) + ".devicedesc%;PCI standard device",
            .service = "pci"};
}

/// A card's keys as an export holds them, with those below the instance that nobody needs.
std::string KeysOf(const Card& card, Choice& choice)
{
    const std::string name = std::string(kControlSet) + "Enum\\PCI\\" + KeyNameOf(card);
    const std::string instance = name + "\\3&" + Hexadecimal(choice.Below(0x10000)) +
                                 Hexadecimal(choice.Below(0x10000)) + "&0&" +
                                 Hexadecimal(choice.Below(0x100)).substr(2);
    const std::string device = "PCI\\VEN_" + card.vendor + "&DEV_" + card.device;
    const std::string base = card.classCode.substr(0, 4);
    std::string keys = "[" + name + "]\r\n\r\n[" + instance + "]\r\n";
    keys += "\"DeviceDesc\"=\"" + card.description + "\"\r\n";
    keys += "\"LocationInformation\"=\"@System32\\\\drivers\\\\pci.sys,#65536;PCI bus %1, device %2, function %3;(0," +
            std::to_string(choice.Below(32)) + ",0)\"\r\n";
    keys += "\"Capabilities\"=dword:00000002\r\n";
    keys += TextList("HardwareID",
                     {device + "&SUBSYS_" + card.subsystem + "&REV_" + card.revision,
                      device + "&SUBSYS_" + card.subsystem, device + "&CC_" + base + "00", device + "&CC_" + base});
    keys += TextList("CompatibleIDs",
                     {device + "&REV_" + card.revision, device, "PCI\\VEN_" + card.vendor + "&CC_" + base + "00",
                      "PCI\\VEN_" + card.vendor + "&CC_" + base, "PCI\\VEN_" + card.vendor, "PCI\\CC_" + base + "00",
                      "PCI\\CC_" + base});
    keys += "\"ContainerID\"=\"{00000000-0000-0000-ffff-ffffffffffff}\"\r\n\"ConfigFlags\"=dword:00000000\r\n";
    keys += "\"ClassGUID\"=\"" + card.classGuid + "\"\r\n\"Service\"=\"" + card.service + "\"\r\n";
    keys += "\"Driver\"=\"" + card.classGuid + "\\\\" + Hexadecimal(choice.Below(100)) + "\"\r\n";
    keys +=
        "\"Class\"=\"" + card.setupClass + "\"\r\n\"Mfg\"=\"@machine.inf,%maker%;(Standard system devices)\"\r\n\r\n";
    keys += "[" + instance + "\\Device Parameters]\r\n\r\n";
    keys += "[" + instance + "\\Device Parameters\\Interrupt Management]\r\n\r\n";
    keys += "[" + instance +
            "\\Device Parameters\\Interrupt Management\\MessageSignaledInterruptProperties]\r\n"
            "\"MSISupported\"=dword:00000001\r\n\r\n";
    keys += "[" + instance +
            "\\LogConf]\r\n\"BasicConfigVector\"=hex(a):48,02,00,00,00,00,00,00,00,00,00,00,00,00,00,00,\\\r\n"
            "  00,00,00,00,01,00,00,00,01,00,01,00,11,00,00,00,00,03,01,00,00,00,00,00,00,\\\r\n"
            "  00,00,f0,00,00,00,00,ff,ff,ff,f0,00,00,00,00\r\n\r\n";
    return keys;
}

std::string ExportOf(int number)
{
    // The set of cards and the system come from a few hundred kinds of machines; the rest is the machine's own.
    Choice kind(static_cast<unsigned>(number % 331));
    Choice own(static_cast<unsigned>(1000 + number));
    const System& system =
        kSystemsOfFleet[static_cast<std::size_t>(kind.Below(static_cast<int>(kSystemsOfFleet.size())))];
    std::string text = "Windows Registry Editor Version 5.00\r\n\r\n";
    text += "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion]\r\n\"CurrentVersion\"=\"" +
            std::string(system.version) + "\"\r\n\"CurrentBuildNumber\"=\"" + std::string(system.build) + "\"\r\n\r\n";
    text += "[" + std::string(kControlSet) + "Control\\ProductOptions]\r\n\"ProductType\"=\"" +
            std::string(system.product) + "\"\r\n\r\n";
    text += "[" + std::string(kControlSet) +
            "Control\\Session Manager\\Environment]\r\n\"PROCESSOR_ARCHITECTURE\"=\"AMD64\"\r\n\r\n";
    text += "[" + std::string(kControlSet) + "Control\\Nls\\CodePage]\r\n\"ACP\"=\"1252\"\r\n\r\n";
    text += "[" + std::string(kControlSet) + "Control\\ComputerName\\ComputerName]\r\n\"ComputerName\"=\"PC" +
            std::to_string(number) + "\"\r\n\r\n";
    text += "[" + std::string(kControlSet) + "Enum\\PCI]\r\n\r\n";
    for (int card = 1 + kind.Below(3); card > 0; --card) {
        text += KeysOf(Adapter(kind.Below(kModels)), own);
    }
    for (int card = 0; text.size() * 2 < kExportBytes; ++card) {
        text += KeysOf(OtherCard(card * 4 + kind.Below(4)), own);
    }
    std::string wide = "\xFF\xFE";
    wide.reserve(2 * text.size() + 2);
    for (const char letter : text) {
        wide += letter;
        wide += '\0';
    }
    return wide;
}
} // namespace

int main(int argc, char** argv)
{
    const int machines = argc == 3 ? std::atoi(argv[2]) : 0;
    if (machines < 1 || machines > 99'999) {
        std::cerr << "usage: bench_fleet FOLDER MACHINES\n";
        return 2;
    }
    try {
        const std::filesystem::path folder = argv[1];
        WriteKit(folder / "kit");
        std::filesystem::create_directories(folder / "machines");
        for (int number = 0; number < machines; ++number) {
            std::array<char, 16> name{};
            static_cast<void>(std::snprintf(name.data(), name.size(), "PC%05d.reg", number));
            WriteFile(folder / "machines" / name.data(), ExportOf(number));
        }
    } catch (const std::exception& failure) {
        std::cerr << "bench_fleet: " << failure.what() << '\n';
        return 1;
    }
    return 0;
}
