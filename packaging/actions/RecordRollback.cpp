#include "RecordRollback.h"

#include <windows.h>

#include <algorithm>
#include <stdexcept>

#include "Handles.h"
#include "RecordNames.h"

namespace {
// The longest name that a value can have, with its terminator.
constexpr DWORD kValueNameChars = 16384;
// The snapshot is passed in a property of the package. A data file is a list of a few kilobytes.
constexpr LONGLONG kLargestDataFileBytes = 262144;

[[noreturn]] void RefuseToGuess(const std::string& what, LSTATUS error)
{
    throw std::runtime_error("cannot read " + what + ": error " + std::to_string(error));
}

/// @return null when there is no such key.
UniqueRegKey OpenKey(const char* path, REGSAM access)
{
    HKEY key = nullptr;
    const LSTATUS error = RegOpenKeyExA(HKEY_LOCAL_MACHINE, path, 0, access, &key);
    if (error != ERROR_SUCCESS && error != ERROR_FILE_NOT_FOUND) {
        RefuseToGuess(path, error);
    }
    return UniqueRegKey(key);
}

UniqueRegKey CreateKey(const char* path)
{
    HKEY key = nullptr;
    const LSTATUS error = RegCreateKeyExA(HKEY_LOCAL_MACHINE, path, 0, nullptr, REG_OPTION_NON_VOLATILE,
                                          KEY_QUERY_VALUE | KEY_SET_VALUE, nullptr, &key, nullptr);
    return UniqueRegKey(error == ERROR_SUCCESS ? key : nullptr);
}

std::optional<SavedValue> ReadValue(HKEY key, const std::string& name)
{
    SavedValue value;
    value.name = name;
    DWORD type = 0;
    DWORD bytes = 0;
    LSTATUS error = RegQueryValueExA(key, name.c_str(), nullptr, &type, nullptr, &bytes);
    if (error == ERROR_FILE_NOT_FOUND) {
        return std::nullopt;
    }
    value.data.resize(bytes);
    if (error == ERROR_SUCCESS) {
        error = RegQueryValueExA(key, name.c_str(), nullptr, &type, reinterpret_cast<BYTE*>(value.data.data()), &bytes);
    }
    if (error != ERROR_SUCCESS) {
        RefuseToGuess(name, error);
    }
    value.data.resize(bytes);
    value.type = type;
    return value;
}

std::vector<SavedValue> ReadValues(HKEY key)
{
    std::vector<SavedValue> values;
    std::string name(kValueNameChars, '\0');
    for (DWORD index = 0;; ++index) {
        DWORD chars = kValueNameChars;
        if (RegEnumValueA(key, index, name.data(), &chars, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS) {
            return values;
        }
        if (std::optional<SavedValue> value = ReadValue(key, name.substr(0, chars))) {
            values.push_back(std::move(*value));
        }
    }
}

bool WriteValue(HKEY key, const SavedValue& value)
{
    return RegSetValueExA(key, value.name.c_str(), 0, value.type, reinterpret_cast<const BYTE*>(value.data.data()),
                          static_cast<DWORD>(value.data.size())) == ERROR_SUCCESS;
}

void ReadDataFile(const std::string& path, RecordSnapshot& snapshot)
{
    const UniqueFile file(CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));
    if (!file.IsOpen()) {
        const DWORD error = GetLastError();
        snapshot.dataFileState = error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND
                                     ? RecordSnapshot::File::Missing
                                     : RecordSnapshot::File::Unknown;
        return;
    }
    snapshot.dataFileState = RecordSnapshot::File::Unknown;
    LARGE_INTEGER size{};
    if (GetFileSizeEx(file.Get(), &size) == FALSE || size.QuadPart > kLargestDataFileBytes) {
        return;
    }
    std::string bytes(static_cast<size_t>(size.QuadPart), '\0');
    DWORD read = 0;
    if (ReadFile(file.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), &read, nullptr) != FALSE &&
        read == bytes.size()) {
        snapshot.dataFileState = RecordSnapshot::File::Saved;
        snapshot.dataFile = std::move(bytes);
    }
}

bool WriteDataFile(const std::string& path, const std::string& bytes)
{
    const UniqueFile file(CreateFileA(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
    DWORD written = 0;
    return file.IsOpen() &&
           WriteFile(file.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr) != FALSE &&
           written == bytes.size();
}

/// Removes a key that the step has created.
bool RemoveAddedKey(const char* path)
{
    if (const UniqueRegKey key = OpenKey(path, KEY_QUERY_VALUE | KEY_SET_VALUE)) {
        for (const SavedValue& value : ReadValues(key.get())) {
            RegDeleteValueA(key.get(), value.name.c_str());
        }
    }
    const LSTATUS error = RegDeleteKeyA(HKEY_LOCAL_MACHINE, path);
    return error == ERROR_SUCCESS || error == ERROR_FILE_NOT_FOUND;
}

bool RestoreResults(const std::optional<std::vector<SavedValue>>& results)
{
    if (!results) {
        return RemoveAddedKey(kBasedriversKey);
    }
    const UniqueRegKey key = CreateKey(kBasedriversKey);
    if (!key) {
        return false;
    }
    for (const SavedValue& value : ReadValues(key.get())) {
        const auto hasItsName = [&](const SavedValue& saved) { return saved.name == value.name; };
        if (std::none_of(results->begin(), results->end(), hasItsName)) {
            RegDeleteValueA(key.get(), value.name.c_str());
        }
    }
    return std::all_of(results->begin(), results->end(),
                       [&](const SavedValue& value) { return WriteValue(key.get(), value); });
}

bool RestoreRegistration(const std::optional<SavedValue>& registration)
{
    if (registration) {
        const UniqueRegKey key = CreateKey(kRegistrationKey);
        return key && WriteValue(key.get(), *registration);
    }
    const UniqueRegKey key = OpenKey(kRegistrationKey, KEY_SET_VALUE);
    if (!key) {
        return true;
    }
    const LSTATUS error = RegDeleteValueA(key.get(), kRegistrationValue);
    return error == ERROR_SUCCESS || error == ERROR_FILE_NOT_FOUND;
}

bool RestoreDataFile(const RecordSnapshot& snapshot, const std::string& path)
{
    switch (snapshot.dataFileState) {
        case RecordSnapshot::File::Saved:
            return WriteDataFile(path, snapshot.dataFile);
        case RecordSnapshot::File::Missing:
            return DeleteFileA(path.c_str()) != FALSE || GetLastError() == ERROR_FILE_NOT_FOUND;
        case RecordSnapshot::File::Unknown:
            break;
    }
    return false;
}
} // namespace

RecordSnapshot TakeSnapshot(const std::string& dataFile)
{
    RecordSnapshot snapshot;
    if (const UniqueRegKey key = OpenKey(kBasedriversKey, KEY_QUERY_VALUE)) {
        snapshot.results = ReadValues(key.get());
    }
    if (const UniqueRegKey key = OpenKey(kRegistrationKey, KEY_QUERY_VALUE)) {
        snapshot.registration = ReadValue(key.get(), kRegistrationValue);
    }
    ReadDataFile(dataFile, snapshot);
    return snapshot;
}

std::vector<std::string> RestoreSnapshot(const RecordSnapshot& snapshot, const std::string& dataFile)
{
    const auto line = [](bool done, const std::string& what) {
        return (done ? "rolled back: " : "cannot be rolled back: ") + what;
    };
    return {
        line(RestoreResults(snapshot.results), "the result values"),
        line(RestoreRegistration(snapshot.registration), "the uninstaller's registration"),
        line(RestoreDataFile(snapshot, dataFile), dataFile),
    };
}
