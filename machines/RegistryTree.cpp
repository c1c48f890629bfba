#include "RegistryTree.h"

#include <utility>

RegistryKey* RegistryTree::Enter(std::span<const StoredName> path)
{
    RegistryKey* key = &m_root;
    for (const StoredName& name : path) {
        key = key == nullptr ? nullptr : Below(*key, name.units, name.wide);
    }
    return key;
}

RegistryKey* RegistryTree::Enter(std::span<const std::u16string_view> path, bool wide)
{
    RegistryKey* key = &m_root;
    for (const std::u16string_view name : path) {
        key = key == nullptr ? nullptr : Below(*key, name, wide);
    }
    return key;
}

/// @return the sub-key of that name, which is created when it is missing; null when the tree is full.
RegistryKey* RegistryTree::Below(RegistryKey& key, std::u16string_view name, bool wide)
{
    if (const auto found = key.keys.find(name); found != key.keys.end()) {
        return &found->second;
    }
    m_bytes += kBytesOfKey + 2 * sizeof(char16_t) * name.size();
    if (m_bytes > m_mostBytes) {
        return nullptr;
    }
    RegistryKey& added = key.keys[UpperCaseName(name)];
    added.name = {.units = std::u16string(name), .wide = wide};
    return &added;
}

bool RegistryTree::SetValue(RegistryKey& key, std::u16string_view name, StoredValue value)
{
    // A replaced value still counts: the limit is for all that comes in.
    m_bytes += value.bytes.size() + sizeof(char16_t) * name.size();
    if (m_bytes > m_mostBytes) {
        return false;
    }
    key.values.insert_or_assign(UpperCaseName(name), std::move(value));
    return true;
}

void RegistryTree::Remove(std::span<const std::u16string_view> path)
{
    RegistryKey* parent = &m_root;
    for (std::size_t at = 0; at < path.size(); ++at) {
        const auto found = parent->keys.find(path[at]);
        if (found == parent->keys.end()) {
            return;
        }
        if (at + 1 == path.size()) {
            parent->keys.erase(found);
            return;
        }
        parent = &found->second;
    }
}

const RegistryKey* RegistryTree::Find(std::string_view path) const
{
    return FindKey(m_root, path);
}

const RegistryKey* FindKey(const RegistryKey& key, std::string_view path)
{
    const RegistryKey* found = &key;
    for (;;) {
        const std::size_t end = path.find('\\');
        const auto next = found->keys.find(path.substr(0, end));
        if (next == found->keys.end()) {
            return nullptr;
        }
        found = &next->second;
        if (end == std::string_view::npos) {
            return found;
        }
        path.remove_prefix(end + 1);
    }
}

const StoredValue* FindValue(const RegistryKey& key, std::string_view name)
{
    const auto found = key.values.find(name);
    return found == key.values.end() ? nullptr : &found->second;
}
