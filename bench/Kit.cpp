#include "Kit.h"

#include <windows.h>

#include <array>
#include <cstdio>
#include <stdexcept>

#include "Handles.h"
#include "KitText.h"
#include "OSVersion.h"

namespace {
constexpr char kPciKey[] = R"(SYSTEM\CurrentControlSet\Enum\PCI\)";
constexpr char kInstance[] = R"(\3&11583659&0&18)";

void WriteWholeFile(const std::string& path, const std::string& content)
{
    const UniqueFile file(CreateFileA(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
    DWORD written = 0;
    if (!file.IsOpen() ||
        WriteFile(file.Get(), content.data(), static_cast<DWORD>(content.size()), &written, nullptr) == FALSE) {
        throw std::runtime_error("cannot write " + path);
    }
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
    WriteWholeFile(m_directory + "\\Morvix.ini", "[Config]\r\nLevelsToRoot=0\r\n" + SystemSection(section));
    for (int file = 0; file < files; ++file) {
        m_fileNames.push_back(InfFileName(file));
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
