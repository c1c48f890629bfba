#include "KitOnDisk.h"

#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <stdexcept>

#include "OSCode.h"

TestFolder::TestFolder()
{
    std::string name = (std::filesystem::temp_directory_path() / "morvix-planner-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) {
        throw std::runtime_error("no temporary folder");
    }
    m_path = name;
}

TestFolder::~TestFolder()
{
    std::error_code error;
    std::filesystem::remove_all(m_path, error);
}

void TestFolder::Write(const std::string& name, std::string_view text) const
{
    const std::filesystem::path file = m_path / name;
    std::filesystem::create_directories(file.parent_path());
    std::ofstream stream(file, std::ios::binary);
    stream << text;
    if (!stream.flush()) {
        throw std::runtime_error("cannot write " + file.string());
    }
}

std::string Inf(const InfText& text)
{
    std::string inf = "[Version]\r\nSignature = \"" + text.signature + "\"\r\nDriverVer = " + text.driverVersion +
                      "\r\n[Manufacturer]\r\n" + text.manufacturer + "\r\n[Norda.NTamd64]\r\n" + text.before;
    for (const std::string& id : text.ids) {
        inf += "%Nic% = Nic.ndi, PCI\\" + id + "\r\n";
    }
    return inf + text.more + "[Strings]\r\nNic = \"Norda test adapter\"\r\n";
}

std::string SetupIni(const std::string& moreLines)
{
    return "[Win832E]\r\nInfSectionName=Norda.NTamd64\r\nInfDir=Drv\r\n" + moreLines;
}

KitFolder::Place PlaceOf(const TestFolder& folder)
{
    return {.folder = folder.Path(), .setupDir = kSetupDir, .maps = {}};
}

Machine MachineWith(const std::vector<std::pair<std::string, std::vector<std::string>>>& devices)
{
    Machine machine;
    machine.name = "PC7";
    machine.source = "PC7.reg";
    machine.system.version = {.value = VersionNumbers{6, 2, 9200}, .from = "test"};
    machine.system.platform = {.value = kPlatformNT, .from = "test"};
    machine.system.servicePack = {.value = uint16_t{0}, .from = "test"};
    machine.system.productType = {.value = kProductWorkstation, .from = "test"};
    machine.system.architecture = {.value = kArchitectureX64, .from = "test"};
    machine.system.codePage = {.value = 1252, .from = "test"};
    machine.devices.emplace();
    for (const auto& [name, ids] : devices) {
        PciDevice& device = machine.devices->emplace_back();
        device.name = name;
        std::string list;
        for (const std::string& id : ids) {
            list += id + '\0';
        }
        PciInstance& instance = device.instances.emplace_back();
        instance.name = "3&11583659&0&18";
        instance.compatibleIds = {.type = kRegistryTextList, .bytes = list + '\0'};
    }
    return machine;
}

Machine MachineWithCards(const std::vector<std::string>& names)
{
    std::vector<std::pair<std::string, std::vector<std::string>>> devices;
    for (const std::string& name : names) {
        devices.push_back({name, {kServedId}});
    }
    return MachineWith(devices);
}
