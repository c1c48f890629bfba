#include "RegistryText.h"

#include <array>
#include <cstring>
#include <vector>

#include "Handles.h"

namespace {
std::string Shown(BYTE byte)
{
    constexpr char kDigits[] = "0123456789abcdef";
    return {kDigits[byte >> 4U], kDigits[byte & 0xFU]};
}

std::string ShownText(std::span<const BYTE> data)
{
    std::string text;
    for (const BYTE byte : data) {
        text += byte < ' ' ? "\\x" + Shown(byte) : std::string(1, static_cast<char>(byte));
    }
    while (text.ends_with("\\x00")) {
        text.resize(text.size() - 4);
    }
    return text;
}
} // namespace

std::string ShownValue(DWORD type, std::span<const BYTE> data)
{
    if (type == REG_SZ || type == REG_EXPAND_SZ || type == REG_MULTI_SZ) {
        return ShownText(data);
    }
    if (type == REG_DWORD && data.size() == sizeof(DWORD)) {
        DWORD number = 0;
        std::memcpy(&number, data.data(), sizeof(number));
        return std::to_string(number);
    }
    std::string bytes = "type " + std::to_string(type) + ':';
    for (const BYTE byte : data) {
        bytes += ' ' + Shown(byte);
    }
    return bytes;
}

std::string ReadRegistryText(const char* key, const char* value)
{
    HKEY opened = nullptr;
    if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, key, 0, KEY_QUERY_VALUE, &opened) != ERROR_SUCCESS) {
        return {};
    }
    const UniqueRegKey owner(opened);
    std::vector<BYTE> data(4096);
    auto bytes = static_cast<DWORD>(data.size());
    DWORD type = REG_NONE;
    if (RegQueryValueExA(opened, value, nullptr, &type, data.data(), &bytes) != ERROR_SUCCESS) {
        return {};
    }
    return ShownValue(type, std::span(data).first(bytes));
}
