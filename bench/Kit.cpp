#include "Kit.h"

#include <windows.h>

#include <array>
#include <cstdio>
#include <stdexcept>

#include "Handles.h"
#include "OSVersion.h"

namespace {
constexpr char kPciKey[] = R"(SYSTEM\CurrentControlSet\Enum\PCI\)";
constexpr char kInstance[] = R"(\3&11583659&0&18)";
constexpr int kModelsOfASection = 180;
constexpr std::size_t kInfBytes = 60'000;

std::string Hexadecimal(int number)
{
    std::array<char, 8> text{};
    static_cast<void>(std::snprintf(text.data(), text.size(), "%04X", static_cast<unsigned>(number)));
    return text.data();
}

void WriteWholeFile(const std::string& path, const std::string& content)
{
    const UniqueFile file(CreateFileA(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
    DWORD written = 0;
    if (!file.IsOpen() ||
        WriteFile(file.Get(), content.data(), static_cast<DWORD>(content.size()), &written, nullptr) == FALSE) {
        throw std::runtime_error("cannot write " + path);
    }
}

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

std::string NewDirectory(int number)
{
    std::array<char, MAX_PATH> folder{};
    GetTempPathA(MAX_PATH, folder.data());
    return folder.data() + ("morvix-bench-" + std::to_string(GetCurrentProcessId()) + "-" + std::to_string(number));
}
} // namespace

std::string AdapterKeyName(int number)
{
    return "VEN_5D1A&DEV_F" + Hexadecimal(number).substr(1) + "&SUBSYS_A01F5D1A&REV_03";
}

Kit::Kit(int files, const std::vector<std::string>& listedIds) : m_directory(NewDirectory(files))
{
    const std::string drivers = m_directory + "\\Drv";
    CreateDirectoryA(m_directory.c_str(), nullptr);
    CreateDirectoryA(drivers.c_str(), nullptr);
    const std::string section(RowOf(COSVersion().GetOSCode()).sectionKey);
    WriteWholeFile(m_directory + "\\Morvix.ini", "[Config]\r\nLevelsToRoot=0\r\n[" + section +
                                                     "]\r\nInfSectionName=Norda.NTamd64.6.1,Norda\r\nInfDir=Drv\r\n");
    for (int file = 0; file < files; ++file) {
        m_fileNames.push_back("bench" + Hexadecimal(file) + ".inf");
        const bool last = file + 1 == files;
        WriteWholeFile(drivers + "\\" + m_fileNames.back(),
                       InfContent(file, last ? listedIds : std::vector<std::string>()));
    }
}

Kit::~Kit()
{
    for (const std::string& name : m_fileNames) {
        DeleteFileA((m_directory + "\\Drv\\" + name).c_str());
    }
    DeleteFileA((m_directory + "\\Morvix.ini").c_str());
    RemoveDirectoryA((m_directory + "\\Drv").c_str());
    RemoveDirectoryA(m_directory.c_str());
}

Adapters::Adapters(int count)
{
    constexpr char kIds[] = "PCI\\VEN_5D1A&CC_020000\0PCI\\CC_0200\0";
    for (int number = 0; number < count; ++number) {
        m_keyNames.push_back(AdapterKeyName(number));
        HKEY opened = nullptr;
        const std::string path = kPciKey + m_keyNames.back() + kInstance;
        if (RegCreateKeyA(HKEY_LOCAL_MACHINE, path.c_str(), &opened) != ERROR_SUCCESS) {
            throw std::runtime_error("cannot create " + path);
        }
        const UniqueRegKey key(opened);
        RegSetValueExA(key.get(), "CompatibleIDs", 0, REG_MULTI_SZ, reinterpret_cast<const BYTE*>(kIds), sizeof(kIds));
    }
}

Adapters::~Adapters()
{
    for (const std::string& name : m_keyNames) {
        RegDeleteKeyA(HKEY_LOCAL_MACHINE, (kPciKey + name + kInstance).c_str());
        RegDeleteKeyA(HKEY_LOCAL_MACHINE, (kPciKey + name).c_str());
    }
}
