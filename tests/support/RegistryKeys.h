#pragma once

#include <windows.h>

#include <optional>
#include <string>
#include <vector>

/// Short forms for tests that write and read registry values under HKEY_LOCAL_MACHINE. `key` is the path below it. Each
/// writer creates the key when it is missing and throws std::runtime_error when it cannot.

void SetRegistryText(const std::string& key, const std::string& name, const std::string& text, DWORD type = REG_SZ);
void SetRegistryNumber(const std::string& key, const std::string& name, DWORD number);
void SetRegistryBytes(const std::string& key, const std::string& name, const std::string& bytes, DWORD type);
/// Writes a well-formed REG_MULTI_SZ.
void SetRegistryList(const std::string& key, const std::string& name, const std::vector<std::string>& entries);
void CreateRegistryKey(const std::string& key);
/// Creates a key that lasts until the system stops: no lasting key can be created below it.
void CreateVolatileRegistryKey(const std::string& key);

[[nodiscard]] bool RegistryKeyExists(const std::string& key);

/// A stored value: type and raw bytes.
struct RegistryValue
{
    DWORD type = REG_NONE;
    std::string bytes;
    /// The bytes up to the first NUL.
    [[nodiscard]] std::string Text() const { return bytes.substr(0, bytes.find('\0')); }
};
[[nodiscard]] std::optional<RegistryValue> ReadRegistryValue(const std::string& key, const std::string& name);
/// @return the text of the value, or "<none>" when there is none.
[[nodiscard]] std::string ReadRegistryText(const std::string& key, const std::string& name);
/// @return the names of the key's sub-keys, empty when the key is missing.
[[nodiscard]] std::vector<std::string> RegistrySubKeys(const std::string& key);

/// Deletes a key with everything below it; a missing key is no error.
void DeleteRegistryTree(const std::string& key);

/// A key that is deleted with everything below it by the constructor and the destructor.
class ScratchRegistryKey
{
public:
    explicit ScratchRegistryKey(std::string key) : m_key(std::move(key)) { DeleteRegistryTree(m_key); }
    ~ScratchRegistryKey() { DeleteRegistryTree(m_key); }
    ScratchRegistryKey(const ScratchRegistryKey&) = delete;
    ScratchRegistryKey& operator=(const ScratchRegistryKey&) = delete;
    [[nodiscard]] const std::string& Path() const { return m_key; }

private:
    std::string m_key;
};

/// Restores a value, or its absence, in the destructor.
class SavedRegistryValue
{
public:
    SavedRegistryValue(std::string key, std::string name);
    ~SavedRegistryValue();
    SavedRegistryValue(const SavedRegistryValue&) = delete;
    SavedRegistryValue& operator=(const SavedRegistryValue&) = delete;

private:
    std::string m_key;
    std::string m_name;
    std::optional<RegistryValue> m_before;
};
