#include "RegistryKeys.h"

#include <array>
#include <cstring>
#include <stdexcept>

#include "Handles.h"

namespace {
UniqueRegKey Create(const std::string& key, DWORD lifetime = REG_OPTION_NON_VOLATILE)
{
    HKEY opened = nullptr;
    if (RegCreateKeyExA(HKEY_LOCAL_MACHINE, key.c_str(), 0, nullptr, lifetime, KEY_ALL_ACCESS, nullptr, &opened,
                        nullptr) != ERROR_SUCCESS) {
        throw std::runtime_error("cannot create registry key " + key);
    }
    return UniqueRegKey(opened);
}

UniqueRegKey Open(const std::string& key)
{
    HKEY opened = nullptr;
    if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, key.c_str(), 0, KEY_READ, &opened) != ERROR_SUCCESS) {
        return nullptr;
    }
    return UniqueRegKey(opened);
}
} // namespace

void SetRegistryBytes(const std::string& key, const std::string& name, const std::string& bytes, DWORD type)
{
    const UniqueRegKey opened = Create(key);
    if (RegSetValueExA(opened.get(), name.c_str(), 0, type, reinterpret_cast<const BYTE*>(bytes.data()),
                       static_cast<DWORD>(bytes.size())) != ERROR_SUCCESS) {
        throw std::runtime_error("cannot set registry value " + name);
    }
}

void SetRegistryText(const std::string& key, const std::string& name, const std::string& text, DWORD type)
{
    SetRegistryBytes(key, name, text + '\0', type);
}

void SetRegistryNumber(const std::string& key, const std::string& name, DWORD number)
{
    std::string bytes(sizeof(number), '\0');
    std::memcpy(bytes.data(), &number, sizeof(number));
    SetRegistryBytes(key, name, bytes, REG_DWORD);
}

void SetRegistryList(const std::string& key, const std::string& name, const std::vector<std::string>& entries)
{
    std::string bytes;
    for (const std::string& entry : entries) {
        bytes += entry + '\0';
    }
    SetRegistryBytes(key, name, bytes + '\0', REG_MULTI_SZ);
}

void CreateRegistryKey(const std::string& key)
{
    Create(key);
}

void CreateVolatileRegistryKey(const std::string& key)
{
    Create(key, REG_OPTION_VOLATILE);
}

bool RegistryKeyExists(const std::string& key)
{
    return Open(key) != nullptr;
}

std::optional<RegistryValue> ReadRegistryValue(const std::string& key, const std::string& name)
{
    const UniqueRegKey opened = Open(key);
    RegistryValue value;
    DWORD bytes = 0;
    if (!opened ||
        RegQueryValueExA(opened.get(), name.c_str(), nullptr, &value.type, nullptr, &bytes) != ERROR_SUCCESS) {
        return std::nullopt;
    }
    value.bytes.resize(bytes);
    if (RegQueryValueExA(opened.get(), name.c_str(), nullptr, &value.type, reinterpret_cast<BYTE*>(value.bytes.data()),
                         &bytes) != ERROR_SUCCESS) {
        return std::nullopt;
    }
    value.bytes.resize(bytes);
    return value;
}

std::string ReadRegistryText(const std::string& key, const std::string& name)
{
    const std::optional<RegistryValue> value = ReadRegistryValue(key, name);
    return value ? value->Text() : "<none>";
}

std::vector<std::string> RegistrySubKeys(const std::string& key)
{
    std::vector<std::string> names;
    const UniqueRegKey opened = Open(key);
    std::array<char, 256> name{};
    for (DWORD size = name.size(), index = 0; opened && RegEnumKeyExA(opened.get(), index, name.data(), &size, nullptr,
                                                                      nullptr, nullptr, nullptr) == ERROR_SUCCESS;
         ++index, size = name.size()) {
        names.emplace_back(name.data());
    }
    return names;
}

void DeleteRegistryTree(const std::string& key)
{
    for (const std::string& name : RegistrySubKeys(key)) {
        DeleteRegistryTree(std::string(key).append("\\").append(name));
    }
    RegDeleteKeyA(HKEY_LOCAL_MACHINE, key.c_str());
}

SavedRegistryValue::SavedRegistryValue(std::string key, std::string name)
    : m_key(std::move(key)), m_name(std::move(name)), m_before(ReadRegistryValue(m_key, m_name))
{
}

SavedRegistryValue::~SavedRegistryValue()
{
    if (m_before) {
        SetRegistryBytes(m_key, m_name, m_before->bytes, m_before->type);
        return;
    }
    HKEY opened = nullptr;
    if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, m_key.c_str(), 0, KEY_SET_VALUE, &opened) == ERROR_SUCCESS) {
        const UniqueRegKey key(opened);
        RegDeleteValueA(key.get(), m_name.c_str());
    }
}
