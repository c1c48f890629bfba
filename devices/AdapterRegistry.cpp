#include "AdapterRegistry.h"

#include <array>
#include <cstddef>

namespace {
constexpr std::size_t kSpareBytes = 5;
}

UniqueRegKey OpenMachineKey(const std::string& path, REGSAM access)
{
    HKEY key = nullptr;
    if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, path.c_str(), 0, access, &key) != ERROR_SUCCESS) {
        return nullptr;
    }
    return UniqueRegKey(key);
}

std::optional<std::string> FirstSubKey(HKEY key)
{
    std::array<char, 256> name{};
    DWORD length = name.size();
    if (RegEnumKeyExA(key, 0, name.data(), &length, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS) {
        return std::nullopt;
    }
    return std::string(name.data());
}

std::optional<std::vector<char>> ReadValueBytes(HKEY key, const char* name)
{
    DWORD bytes = 0;
    if (RegQueryValueExA(key, name, nullptr, nullptr, nullptr, &bytes) != ERROR_SUCCESS) {
        return std::nullopt;
    }
    std::vector<char> value(std::size_t{bytes} + kSpareBytes, '\0');
    if (RegQueryValueExA(key, name, nullptr, nullptr, reinterpret_cast<BYTE*>(value.data()), &bytes) != ERROR_SUCCESS) {
        return std::nullopt;
    }
    return value;
}

std::optional<std::string> ReadTextValue(HKEY key, const char* name)
{
    const std::optional<std::vector<char>> value = ReadValueBytes(key, name);
    return value ? std::optional<std::string>(value->data()) : std::nullopt;
}

std::optional<std::string> ReadTextValue(HKEY key, const char* name, std::size_t maxBytes)
{
    const std::optional<std::vector<char>> value = ReadValueBytes(key, name);
    return value && value->size() - kSpareBytes <= maxBytes ? std::optional<std::string>(value->data()) : std::nullopt;
}

UniqueRegKey OpenDriverKey(const std::string& driverKey)
{
    return OpenMachineKey(R"(SYSTEM\CurrentControlSet\Control\Class\)" + driverKey, KEY_READ);
}
