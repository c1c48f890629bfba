#include "MachineState.h"

#include <windows.h>

#include <array>
#include <vector>

#include "Files.h"
#include "Handles.h"
#include "RegistryText.h"

namespace {
constexpr DWORD kNameChars = 16384;

constexpr auto kKeys = std::to_array<const char*>({
    R"(SYSTEM\CurrentControlSet\Enum\PCI)",
    R"(SYSTEM\CurrentControlSet\Control\Class\{4D36E972-E325-11CE-BFC1-08002BE10318})",
    R"(SYSTEM\CurrentControlSet\Services)",
    R"(SOFTWARE\Norda)",
    R"(SOFTWARE\Microsoft\Windows\CurrentVersion\Uninstall)",
});

constexpr auto kFiles = std::to_array<const char*>({
    R"(inf\*.inf)",
    R"(System32\drivers\*.sys)",
    R"(System32\DriverStore\FileRepository\*)",
});

void AddKey(const std::string& path, std::string& lines);

void AddValues(HKEY key, const std::string& path, std::string& lines)
{
    std::vector<char> name(kNameChars);
    std::vector<BYTE> data;
    for (DWORD index = 0;; ++index) {
        auto nameChars = static_cast<DWORD>(name.size());
        DWORD bytes = 0;
        DWORD type = REG_NONE;
        LONG status = RegEnumValueA(key, index, name.data(), &nameChars, nullptr, &type, nullptr, &bytes);
        if (status == ERROR_SUCCESS || status == ERROR_MORE_DATA) {
            // Some room more: the value may grow meanwhile.
            data.resize(bytes + 256);
            nameChars = static_cast<DWORD>(name.size());
            bytes = static_cast<DWORD>(data.size());
            status = RegEnumValueA(key, index, name.data(), &nameChars, nullptr, &type, data.data(), &bytes);
        }
        if (status == ERROR_NO_MORE_ITEMS) {
            return;
        }
        if (status != ERROR_SUCCESS && status != ERROR_MORE_DATA) {
            // A key that was deleted meanwhile answers every call with an error.
            lines += path + " : error " + std::to_string(status) + '\n';
            return;
        }
        lines += path + " : " + std::string(name.data(), nameChars) + " = ";
        lines += status == ERROR_SUCCESS ? ShownValue(type, std::span(data).first(bytes))
                                         : "error " + std::to_string(status);
        lines += '\n';
    }
}

void AddSubkeys(HKEY key, const std::string& path, std::string& lines)
{
    std::array<char, 256> name{};
    for (DWORD index = 0;; ++index) {
        auto nameChars = static_cast<DWORD>(name.size());
        if (RegEnumKeyExA(key, index, name.data(), &nameChars, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS) {
            return;
        }
        AddKey(path + '\\' + name.data(), lines);
    }
}

void AddKey(const std::string& path, std::string& lines)
{
    HKEY opened = nullptr;
    const LONG status = RegOpenKeyExA(HKEY_LOCAL_MACHINE, path.c_str(), 0, KEY_READ, &opened);
    if (status == ERROR_FILE_NOT_FOUND) {
        return;
    }
    lines += path + (status == ERROR_SUCCESS ? "" : " : error " + std::to_string(status)) + '\n';
    if (status != ERROR_SUCCESS) {
        return;
    }
    const UniqueRegKey key(opened);
    AddValues(opened, path, lines);
    AddSubkeys(opened, path, lines);
}
} // namespace

std::string MachineState()
{
    std::string lines;
    for (const char* key : kKeys) {
        AddKey(key, lines);
    }
    for (const char* files : kFiles) {
        const std::string pattern = EnvironmentText("SystemRoot") + '\\' + files;
        const std::string folder = pattern.substr(0, pattern.rfind('\\') + 1);
        for (const FoundFile& file : FilesOf(pattern)) {
            lines += folder + file.name;
            // The time of a folder changes with what is in it.
            if (!file.isFolder) {
                lines += " : " + std::to_string(file.bytes) + " bytes, written " + std::to_string(file.written);
            }
            lines += '\n';
        }
    }
    return lines;
}
