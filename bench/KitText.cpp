#include "KitText.h"

#include <array>
#include <cstdio>

namespace {
constexpr int kModelsOfASection = 180;
constexpr std::size_t kInfBytes = 60'000;

std::string Section(const std::string& name, int file, const std::vector<std::string>& listedIds)
{
    std::string lines = "[" + name + "]\r\n";
    for (int model = 0; model < kModelsOfASection; ++model) {
        const std::string number = Hexadecimal(model);
        lines += "%D" + number + ".DeviceDesc% = D" + number + ".ndi, PCI\\VEN_5D1A&DEV_" + number + "&SUBSYS_" +
                 Hexadecimal(file) + "5D1A\r\n";
    }
    for (const std::string& id : listedIds) {
        lines += "%D0000.DeviceDesc% = D0000.ndi, PCI\\" + id + "\r\n";
    }
    return lines + "\r\n";
}
} // namespace

std::string Hexadecimal(int number)
{
    std::array<char, 8> text{};
    static_cast<void>(std::snprintf(text.data(), text.size(), "%04X", static_cast<unsigned>(number)));
    return text.data();
}

std::string InfContent(int file, const std::vector<std::string>& listedIds)
{
    std::string content =
        "[Version]\r\nSignature = \"$Windows NT$\"\r\nClass = Net\r\n"
        "ClassGUID = {4D36E972-E325-11CE-BFC1-08002BE10318}\r\nProvider = %Norda%\r\n"
        "DriverVer = 01/02/2013,1.2.3.4\r\n\r\n[Manufacturer]\r\n%Norda% = Norda, NTamd64, NTamd64.6.1\r\n\r\n";
    content += Section("Norda.NTamd64.6.1", file, {}) + Section("Norda", file, listedIds) + "[Strings]\r\n";
    for (int model = 0; model < kModelsOfASection; ++model) {
        const std::string number = Hexadecimal(model);
        content += "D" + number + ".DeviceDesc = \"Norda Network Adapter, model " + number + "\"\r\n";
    }
    content += "Norda = \"Norda\"\r\n";
    // A kit's files vary in size.
    while (content.size() < kInfBytes + static_cast<std::size_t>(file) * 8) {
        content += "; text\r\n";
    }
    return content;
}

std::string InfFileName(int file)
{
    return "bench" + Hexadecimal(file) + ".inf";
}

std::string SystemSection(const std::string& system)
{
    return "[" + system + "]\r\nInfSectionName=Norda.NTamd64.6.1,Norda\r\nInfDir=Drv\r\n";
}
