// The values of a registry key: numbers, texts, bytes, and lists of texts.
#include <mbstring.h>

#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <utility>

#include "OrvDebug.h"
#include "OrvMultiString.h"
#include "OrvRegKey.h"
#include "OrvSecure.h"

namespace {
constexpr char kSourceFile[] = R"(..\..\Common\Src\OrvRegKey)";
// A fixed line number: existing log readers expect it.
constexpr int kListEntryLine = 921;
constexpr DWORD kTextBytes = 512;
// Zeros after data read from the registry, which may be empty or lack its terminator.
constexpr size_t kSpareBytes = 5;

const unsigned char* MultibyteText(const COrvString& text)
{
    return reinterpret_cast<const unsigned char*>(static_cast<const char*>(text));
}

bool SameText(const COrvString& left, const COrvString& right)
{
    return _mbsicmp(MultibyteText(left), MultibyteText(right)) == 0;
}
} // namespace

bool COrvRegKey::GetValue(const COrvString& name, DWORD& value)
{
    bool read = false;
    if (m_bOpen) {
        OrvTrace().Print("Opened COrvRegKey::GetValue ");
        DWORD type = REG_NONE;
        DWORD bytes = sizeof(value);
        m_lLastResult = RegQueryValueExA(m_hKey, name, nullptr, &type, reinterpret_cast<BYTE*>(&value), &bytes);
        OrvTrace().Print("Opened COrvRegKey::GetValue :%d", static_cast<int>(m_lLastResult));
        // The platform reports the type of a value that is too long for a number, too.
        const bool typeKnown = m_lLastResult == ERROR_SUCCESS || m_lLastResult == ERROR_MORE_DATA;
        if (typeKnown && type != REG_DWORD) {
            OrvTrace().Print("COrvRegKey::GetValue dwRegType != REG_DWORD ");
        }
        read = m_lLastResult == ERROR_SUCCESS && type == REG_DWORD;
    }
    OrvTrace().Print("Opened COrvRegKey::GetValue :%d", read ? 1 : 0);
    return read;
}

bool COrvRegKey::GetValue(const COrvString& name, COrvString& value)
{
    // One byte more than requested: a text that fills the buffer may lack its terminator.
    std::array<char, kTextBytes + 1> buffer{};
    bool read = false;
    if (m_bOpen) {
        DWORD bytes = kTextBytes;
        m_lLastResult =
            RegQueryValueExA(m_hKey, name, nullptr, nullptr, reinterpret_cast<BYTE*>(buffer.data()), &bytes);
        read = m_lLastResult == ERROR_SUCCESS;
    }
    // Assigned last, since `name` and `value` may be the same object.
    value = read ? buffer.data() : "";
    return read;
}

bool COrvRegKey::GetValue(const COrvString& name, BYTE* data, DWORD& size)
{
    if (!m_bOpen) {
        return false;
    }
    m_lLastResult = RegQueryValueExA(m_hKey, name, nullptr, nullptr, data, &size);
    return m_lLastResult == ERROR_SUCCESS;
}

bool COrvRegKey::GetValue(const COrvString& name, std::vector<COrvString>& list)
{
    m_lLastResult = 0;
    // Copied first, since `name` may be in `list`.
    const std::string asked = static_cast<const char*>(name);
    list.clear();
    if (!m_bOpen) {
        return false;
    }
    DWORD bytes = 0;
    m_lLastResult = RegQueryValueExA(m_hKey, asked.c_str(), nullptr, nullptr, nullptr, &bytes);
    if (m_lLastResult != ERROR_SUCCESS) {
        return false;
    }
    std::vector<char> buffer(bytes + kSpareBytes);
    m_lLastResult =
        RegQueryValueExA(m_hKey, asked.c_str(), nullptr, nullptr, reinterpret_cast<BYTE*>(buffer.data()), &bytes);
    if (m_lLastResult != ERROR_SUCCESS) {
        return false;
    }
    const std::vector<std::string> texts = OrvReadMultiString(std::string_view(buffer.data(), bytes));
    list.assign(texts.begin(), texts.end());
    return true;
}

bool COrvRegKey::SetValue(const COrvString& name, DWORD value)
{
    if (!m_bOpen) {
        return false;
    }
    m_lLastResult = RegSetValueExA(m_hKey, name, 0, REG_DWORD, reinterpret_cast<const BYTE*>(&value), sizeof(value));
    return m_lLastResult == ERROR_SUCCESS;
}

bool COrvRegKey::SetValue(const COrvString& name, const COrvString& value, bool expand)
{
    m_lLastResult = 0;
    if (!m_bOpen) {
        return false;
    }
    m_lLastResult = RegSetValueExA(m_hKey, name, 0, expand ? REG_EXPAND_SZ : REG_SZ,
                                   reinterpret_cast<const BYTE*>(static_cast<const char*>(value)),
                                   static_cast<DWORD>(value.Length() + 1));
    return m_lLastResult == ERROR_SUCCESS;
}

bool COrvRegKey::SetValue(const COrvString& name, const BYTE* data, DWORD size)
{
    m_lLastResult = 0;
    if (!m_bOpen) {
        return false;
    }
    m_lLastResult = RegSetValueExA(m_hKey, name, 0, REG_BINARY, data, size);
    return m_lLastResult == ERROR_SUCCESS;
}

// By value, so that a caller can move its list here. NOLINTNEXTLINE(performance-unnecessary-value-param)
bool COrvRegKey::SetValue(const COrvString& name, std::vector<COrvString> list)
{
    m_lLastResult = 0;
    if (!m_bOpen) {
        return false;
    }
    std::vector<char> buffer(OrvMultiStringBytes(list));
    size_t at = 0;
    for (const COrvString& text : list) {
        OrvSafeCopy(kSourceFile, kListEntryLine, buffer.data() + at, buffer.size() - at, text);
        at += text.Length() + 1;
    }
    m_lLastResult = RegSetValueExA(m_hKey, name, 0, REG_MULTI_SZ, reinterpret_cast<const BYTE*>(buffer.data()),
                                   static_cast<DWORD>(buffer.size()));
    return m_lLastResult == ERROR_SUCCESS;
}

bool COrvRegKey::DeleteValue(const COrvString& name)
{
    m_lLastResult = 0;
    if (m_bOpen) {
        m_lLastResult = RegDeleteValueA(m_hKey, name);
    }
    // Also true for a closed key: it holds no values.
    return m_lLastResult == ERROR_SUCCESS;
}

DWORD COrvRegKey::GetRegType(const COrvString& name)
{
    m_lLastResult = 0;
    if (!m_bOpen) {
        return REG_NONE;
    }
    DWORD type = REG_NONE;
    m_lLastResult = RegQueryValueExA(m_hKey, name, nullptr, &type, nullptr, nullptr);
    return m_lLastResult == ERROR_SUCCESS ? type : REG_NONE;
}

long COrvRegKey::FlushKey() const
{
    OrvTrace().Print("Opened COrvRegKey::RegFlushKey ");
    const LONG status = RegFlushKey(m_hKey);
    if (status != ERROR_SUCCESS) {
        // The format lacks its conversion letter, so the status does not appear; existing log readers expect the text.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat"
#pragma GCC diagnostic ignored "-Wformat-extra-args"
        OrvTrace().Print("COrvRegKey::RegFlushKey Failure: %l", status);
#pragma GCC diagnostic pop
    } else {
        OrvTrace().Print("COrvRegKey::RegFlushKey Success");
    }
    OrvTrace().Print("Closed COrvRegKey::RegFlushKey");
    return status;
}

bool COrvRegKey::AddValueToMultiString(const COrvString& name, const COrvString& value)
{
    std::vector<COrvString> list;
    GetValue(name, list);
    for (const COrvString& text : list) {
        if (SameText(text, value)) {
            return true;
        }
    }
    list.push_back(value);
    return SetValue(name, std::move(list));
}

bool COrvRegKey::RemoveValueFromMultiString(const COrvString& name, const COrvString& value)
{
    std::vector<COrvString> list;
    if (!GetValue(name, list)) {
        return true;
    }
    const size_t removed = std::erase_if(list, [&](const COrvString& text) { return SameText(text, value); });
    return removed == 0 || SetValue(name, std::move(list));
}

bool COrvRegKey::IsValueInMultiString(const COrvString& name, const COrvString& value)
{
    std::vector<COrvString> list;
    return GetValue(name, list) &&
           std::any_of(list.begin(), list.end(), [&](const COrvString& text) { return SameText(text, value); });
}

bool COrvRegKey::IsSubStringValueInMultiString(const COrvString& name, const COrvString& value, COrvString& match)
{
    COrvString wanted = value;
    wanted.MakeLower();
    std::vector<COrvString> list;
    if (!GetValue(name, list)) {
        return false;
    }
    for (const COrvString& text : list) {
        COrvString lowered = text;
        lowered.MakeLower();
        if (_mbsstr(MultibyteText(lowered), MultibyteText(wanted)) != nullptr) {
            match = text;
            return true;
        }
    }
    return false;
}
