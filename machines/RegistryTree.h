#pragma once

#include <cstddef>
#include <map>
#include <span>
#include <string>
#include <string_view>

#include "StoredText.h"

/// The part of a registry that a description of a machine needs. Names are found without regard to letter case, and a
/// key's sub-keys come in the registry's own order.
struct RegistryKey
{
    StoredName name;
    std::map<std::u16string, RegistryKey, NameOrder> keys;   ///< by UpperCaseName
    std::map<std::u16string, StoredValue, NameOrder> values; ///< by UpperCaseName
};

class RegistryTree
{
public:
    /// More than any machine has; only a hostile input gets there.
    static constexpr std::size_t kMostBytes = std::size_t{64} << 20;
    explicit RegistryTree(std::size_t mostBytes = kMostBytes) : m_mostBytes(mostBytes) {}

    /// @return the key of that path, which is created when it is missing; null when the tree is full.
    RegistryKey* Enter(std::span<const StoredName> path);
    /// The same for names that are all in the same form.
    RegistryKey* Enter(std::span<const std::u16string_view> path, bool wide);
    /// Sets a value; an earlier one of its name is replaced.
    /// @return false when the tree is full: the value is then left out.
    bool SetValue(RegistryKey& key, std::u16string_view name, StoredValue value);
    /// Removes a key and everything below it; a missing one is not an error.
    void Remove(std::span<const std::u16string_view> path);

    /// @param path  ASCII names with backslashes between them.
    /// @return null when there is no such key.
    [[nodiscard]] const RegistryKey* Find(std::string_view path) const;
    [[nodiscard]] bool IsEmpty() const { return m_root.keys.empty(); }

private:
    static constexpr std::size_t kBytesOfKey = 400; // about, beside its name

    RegistryKey* Below(RegistryKey& key, std::u16string_view name, bool wide);

    RegistryKey m_root;
    std::size_t m_mostBytes;
    std::size_t m_bytes = 0;
};

/// @return null when the key has no such sub-key.
[[nodiscard]] const RegistryKey* FindKey(const RegistryKey& key, std::string_view path);
/// @return null when the key has no such value.
[[nodiscard]] const StoredValue* FindValue(const RegistryKey& key, std::string_view name);
