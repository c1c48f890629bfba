#include "ResultKeyAccess.h"

#include <windows.h>

#include <array>
#include <string>
#include <vector>

#include "Handles.h"
#include "NetInst.h"
#include "RecordNames.h"

namespace {
// The longest name that a value can have, with its terminator.
constexpr DWORD kValueNameChars = 16384;

UniqueRegKey OpenMachineKey(const char* path, REGSAM access)
{
    HKEY key = nullptr;
    if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, path, 0, access, &key) != ERROR_SUCCESS) {
        return nullptr;
    }
    return UniqueRegKey(key);
}

std::string ReadText(HKEY key, const std::string& name)
{
    DWORD type = 0;
    DWORD bytes = 0;
    if (RegQueryValueExA(key, name.c_str(), nullptr, &type, nullptr, &bytes) != ERROR_SUCCESS ||
        (type != REG_SZ && type != REG_EXPAND_SZ)) {
        return {};
    }
    std::string text(bytes, '\0');
    if (RegQueryValueExA(key, name.c_str(), nullptr, nullptr, reinterpret_cast<BYTE*>(text.data()), &bytes) !=
        ERROR_SUCCESS) {
        return {};
    }
    // The stored text may continue after its terminator, or lack one.
    text.resize(bytes);
    return text.substr(0, text.find('\0'));
}

std::vector<std::string> FailureRecords(HKEY key)
{
    std::vector<std::string> names;
    std::vector<char> name(kValueNameChars);
    for (DWORD index = 0;; ++index) {
        DWORD chars = kValueNameChars;
        if (RegEnumValueA(key, index, name.data(), &chars, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS) {
            return names;
        }
        std::string found(name.data(), chars);
        if (IsFailureRecord(found, ReadText(key, found))) {
            names.push_back(std::move(found));
        }
    }
}

bool IsNumberOtherThanZero(HKEY key, const char* name)
{
    DWORD needed = 0;
    DWORD type = 0;
    DWORD bytes = sizeof(needed);
    return RegQueryValueExA(key, name, nullptr, &type, reinterpret_cast<BYTE*>(&needed), &bytes) == ERROR_SUCCESS &&
           type == REG_DWORD && needed != 0;
}
} // namespace

void ForgetEarlierFailures()
{
    if (const UniqueRegKey key = OpenMachineKey(kBasedriversKey, KEY_QUERY_VALUE | KEY_SET_VALUE)) {
        for (const std::string& name : FailureRecords(key.get())) {
            RegDeleteValueA(key.get(), name.c_str());
        }
        RegDeleteValueA(key.get(), kRebootNeededValue);
    }
    if (const UniqueRegKey key = OpenMachineKey(kNetInstKey, KEY_SET_VALUE)) {
        RegDeleteValueA(key.get(), kNetInstRestartValue);
    }
}

ResultRecords ReadResultRecords()
{
    ResultRecords records;
    if (const UniqueRegKey key = OpenMachineKey(kBasedriversKey, KEY_QUERY_VALUE)) {
        records.install = ReadText(key.get(), kInstallValue);
        records.version = ReadText(key.get(), kVersionValue);
        records.restartNeeded = IsNumberOtherThanZero(key.get(), kRebootNeededValue);
        for (const std::string& name : FailureRecords(key.get())) {
            if (std::string family = FamilyOfRecord(name); !family.empty()) {
                records.failedFamilies.push_back(std::move(family));
            }
        }
    }
    if (const UniqueRegKey key = OpenMachineKey(kNetInstKey, KEY_QUERY_VALUE)) {
        records.libraryNeedsRestart = IsNumberOtherThanZero(key.get(), kNetInstRestartValue);
    }
    return records;
}
