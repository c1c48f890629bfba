#include "SimulatedAdapter.h"

#include <windows.h>

#include <array>
#include <map>

#include "RegistryKeys.h"

namespace {
const std::map<std::string, std::string> kClasses = {{"Net", "{4D36E972-E325-11CE-BFC1-08002BE10318}"},
                                                     {"System", "{4D36E97D-E325-11CE-BFC1-08002BE10318}"}};

std::string EnumKey(const std::string& device)
{
    return "SYSTEM\\CurrentControlSet\\Enum\\PCI\\" + device;
}

std::string InstanceKey(const std::string& device)
{
    return EnumKey(device) + "\\3&267a616a&0&C8";
}

void RemoveService(const std::string& name)
{
    const SC_HANDLE manager = OpenSCManagerA(nullptr, nullptr, SC_MANAGER_CONNECT);
    const SC_HANDLE service = OpenServiceA(manager, name.c_str(), DELETE);
    if (service != nullptr) {
        DeleteService(service);
        CloseServiceHandle(service);
    }
    CloseServiceHandle(manager);
}

std::string WindowsFile(const std::string& relative)
{
    std::array<char, MAX_PATH> directory{};
    GetWindowsDirectoryA(directory.data(), MAX_PATH);
    return std::string(directory.data()) + "\\" + relative;
}
} // namespace

SimulatedAdapter::SimulatedAdapter(const std::string& device, const std::string& className) : m_device(device)
{
    DeleteRegistryTree(EnumKey(m_device));
    const std::string full = "PCI\\" + device;
    const std::string noRevision = full.substr(0, full.rfind("&REV"));
    const std::string plain = full.substr(0, full.rfind("&SUBSYS"));
    const std::string key = InstanceKey(m_device);
    SetRegistryList(key, "HardwareID", {full, noRevision, plain + full.substr(full.rfind("&REV")), plain});
    SetRegistryList(key, "CompatibleIDs", {"PCI\\VEN_5D1A&CC_020000", "PCI\\VEN_5D1A&CC_0200", "PCI\\CC_0200"});
    SetRegistryText(key, "Class", className);
    SetRegistryText(key, "ClassGUID", kClasses.at(className));
}

SimulatedAdapter::~SimulatedAdapter()
{
    RemoveTraces();
    DeleteRegistryTree(EnumKey(m_device));
}

std::string SimulatedAdapter::Value(const std::string& name) const
{
    return ReadRegistryText(InstanceKey(m_device), name);
}

std::string SimulatedAdapter::ClassKey() const
{
    const std::string driver = Value("Driver");
    return driver == "<none>" ? "" : "SYSTEM\\CurrentControlSet\\Control\\Class\\" + driver;
}

void SimulatedAdapter::RemoveTraces()
{
    if (ClassKey().empty()) {
        return;
    }
    const std::string service = Value("Service");
    const std::string serviceKey = "SYSTEM\\CurrentControlSet\\Services\\" + service;
    const std::string image = ReadRegistryText(serviceKey, "ImagePath");
    const std::string storedInf = ReadRegistryText(ClassKey(), "InfPath");
    DeleteFileA(SystemDriverFile(image.substr(image.rfind('\\') + 1)).c_str());
    RemoveInstalledFiles(storedInf.substr(0, storedInf.rfind('.')));
    DeleteRegistryTree(ClassKey());
    RemoveService(service);
}

void RemoveInstalledFiles(const std::string& name)
{
    DeleteFileA(SystemDriverFile(name + ".sys").c_str());
    DeleteFileA(WindowsFile("inf\\" + name + ".inf").c_str());
    DeleteFileA(WindowsFile("inf\\" + name + ".pnf").c_str());
}

std::string SystemDriverFile(const std::string& name)
{
    std::array<char, MAX_PATH> directory{};
    GetSystemDirectoryA(directory.data(), MAX_PATH);
    return std::string(directory.data()) + "\\drivers\\" + name;
}

std::string FileVersionOf(const std::string& path)
{
    DWORD unused = 0;
    const DWORD bytes = GetFileVersionInfoSizeA(path.c_str(), &unused);
    std::vector<char> block(bytes);
    void* found = nullptr;
    UINT length = 0;
    if (bytes == 0 || !GetFileVersionInfoA(path.c_str(), 0, bytes, block.data()) ||
        !VerQueryValueA(block.data(), "\\", &found, &length)) {
        return {};
    }
    const auto* version = static_cast<const VS_FIXEDFILEINFO*>(found);
    return std::to_string(HIWORD(version->dwFileVersionMS)) + "." + std::to_string(LOWORD(version->dwFileVersionMS)) +
           "." + std::to_string(HIWORD(version->dwFileVersionLS)) + "." +
           std::to_string(LOWORD(version->dwFileVersionLS));
}
