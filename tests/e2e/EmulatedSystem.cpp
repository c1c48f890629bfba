#include "EmulatedSystem.h"

#include <stdexcept>

#include "Handles.h"
#include "RegistryKeys.h"

namespace {
constexpr char kProgramKey[] = R"(Software\Wine\AppDefaults\Morvix.exe)";
constexpr char kVersionKey[] = R"(SOFTWARE\Microsoft\Windows NT\CurrentVersion)";
constexpr char kProductKey[] = R"(SYSTEM\CurrentControlSet\Control\ProductOptions)";

void SetUserText(const std::string& key, const std::string& name, const std::string& text)
{
    HKEY opened = nullptr;
    if (RegCreateKeyA(HKEY_CURRENT_USER, key.c_str(), &opened) != ERROR_SUCCESS) {
        throw std::runtime_error("cannot create user key " + key);
    }
    const UniqueRegKey owner(opened);
    RegSetValueExA(opened, name.c_str(), 0, REG_SZ, reinterpret_cast<const BYTE*>(text.c_str()),
                   static_cast<DWORD>(text.size() + 1));
}

void DeleteUserValue(const std::string& key, const std::string& name)
{
    HKEY opened = nullptr;
    if (RegOpenKeyExA(HKEY_CURRENT_USER, key.c_str(), 0, KEY_ALL_ACCESS, &opened) == ERROR_SUCCESS) {
        const UniqueRegKey owner(opened);
        RegDeleteValueA(opened, name.c_str());
    }
}

void DeleteMachineValue(const std::string& key, const std::string& name)
{
    HKEY opened = nullptr;
    if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, key.c_str(), 0, KEY_ALL_ACCESS, &opened) == ERROR_SUCCESS) {
        const UniqueRegKey owner(opened);
        RegDeleteValueA(opened, name.c_str());
    }
}
} // namespace

EmulatedSystem::EmulatedSystem(const SystemVersion& system)
{
    if (!RunsInWine()) {
        throw std::runtime_error("only Wine can report another system than the one that runs");
    }
    if (system.wineName != nullptr) {
        SetUserText(kProgramKey, "Version", system.wineName);
        return;
    }
    Replace(kVersionKey, "CurrentMajorVersionNumber", std::nullopt);
    Replace(kVersionKey, "CurrentMinorVersionNumber", std::nullopt);
    Replace(kVersionKey, "CurrentVersion", system.version);
    Replace(kVersionKey, "CurrentBuildNumber", system.build);
    Replace(kVersionKey, "CSDVersion", "");
    Replace(kProductKey, "ProductType", system.productType);
}

EmulatedSystem::~EmulatedSystem()
{
    DeleteUserValue(kProgramKey, "Version");
    for (const Saved& saved : m_saved) {
        if (saved.bytes) {
            SetRegistryBytes(saved.key, saved.name, *saved.bytes, saved.type);
        } else {
            DeleteMachineValue(saved.key, saved.name);
        }
    }
}

void EmulatedSystem::Replace(const std::string& key, const std::string& name, const std::optional<std::string>& text)
{
    const std::optional<RegistryValue> before = ReadRegistryValue(key, name);
    m_saved.push_back({key, name, before ? before->type : REG_NONE,
                       before ? std::optional<std::string>(before->bytes) : std::nullopt});
    if (text) {
        SetRegistryText(key, name, *text);
    } else {
        DeleteMachineValue(key, name);
    }
}

NativeLibrary::NativeLibrary(std::string library) : m_library(std::move(library))
{
    if (RunsInWine()) {
        SetUserText(std::string(kProgramKey) + R"(\DllOverrides)", m_library, "native,builtin");
    }
}

NativeLibrary::~NativeLibrary()
{
    if (RunsInWine()) {
        DeleteUserValue(std::string(kProgramKey) + R"(\DllOverrides)", m_library);
    }
}

void EndEmulations()
{
    if (RunsInWine()) {
        DeleteUserValue(kProgramKey, "Version");
        RegDeleteKeyA(HKEY_CURRENT_USER, (std::string(kProgramKey) + R"(\DllOverrides)").c_str());
    }
}
