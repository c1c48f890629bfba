#include "DevicePassFixture.h"

#include <array>

#include "InfSearch.h"

std::vector<std::string> WholePass(const std::string& tested, const std::vector<std::string>& linesOfTested)
{
    std::vector<std::string> lines{"Enter -> EnumerateRegistryForPCIDevices()\n",
                                   "************ enumerating registry for devices...\n"};
    for (const std::string& name : RegistrySubKeys(kPciKey)) {
        Append(lines, {"Enter -> IsNordaNetworkDevice()\n", std::string(kPciKey) + "\\" + name});
        if (name == tested) {
            Append(lines, {"Norda Network Adapter found!"});
        }
        Append(lines, {"Exit -> IsNordaNetworkDevice()\n"});
        if (name == tested) {
            Append(lines, linesOfTested);
        }
    }
    Append(lines,
           {"************ finished enumerating registry for devices\n", "Exit -> EnumerateRegistryForPCIDevices()\n"});
    return lines;
}

std::vector<std::string> ListLines(TraceCapture& trace)
{
    return TraceOf(trace, [] {
        std::vector<std::string> directories;
        std::vector<std::string> excludes;
        GetInfDirs(directories, excludes);
    });
}

std::vector<std::string> SearchLines(TraceCapture& trace, const InfKit& kit, const std::string& searchId)
{
    std::vector<std::string> lines;
    for (const std::string& directory : kit.SearchDirectories()) {
        lines.push_back(directory);
        std::array<char, 260> infPath{};
        bool found = false;
        Append(lines, TraceOf(trace, [&] {
                   found = GetInfFile(searchId.c_str(), directory, RecordOf("Windows Vista"), infPath.data(), {});
               }));
        if (found) {
            break;
        }
    }
    return lines;
}

std::vector<std::string> StorageLines(const std::string& device)
{
    return {"Enter -> GetNetCfgInstanceId()\n", device, "Exit -> GetNetCfgInstanceId()\n"};
}

std::vector<std::string> InstallLines(const std::string& device, const std::string& infPath, const std::string& answer)
{
    const std::string upper = UpperCased(infPath);
    return {"!!FOUND INF MATCH\n",
            "Entering - GetLanguageSpecificString",
            "==>installing driver(s)\n",
            "2K/XP install: PCI\\" + device + ", " + upper + "\n",
            " 2K/XP UpdateDriver() returned: " + answer + "\n",
            "Enter -> PostInstallRegResult\n",
            "inf file name and path is ->",
            upper,
            "inf file name is ->",
            upper.substr(upper.rfind('\\')),
            "A device other than a network device was installed"};
}
std::vector<std::string> BothInOrder()
{
    std::vector<std::string> names;
    for (const std::string& name : RegistrySubKeys(kPciKey)) {
        if (name == kDevice || name == kOtherDevice) {
            names.push_back(name);
        }
    }
    return names;
}
