#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "RegistryTree.h"

/// A registry whose keys can be opened one by one.
class RegistryView
{
public:
    virtual ~RegistryView() = default;
    /// Number of an open key. All of them are closed with the view.
    using Key = std::size_t;

    [[nodiscard]] virtual std::optional<Key> Root() = 0;
    [[nodiscard]] virtual std::optional<Key> Open(Key key, const StoredName& name) = 0;
    struct SubKey
    {
        StoredName name;
        Key key = 0;
    };
    /// The sub-keys that can be opened.
    [[nodiscard]] virtual std::vector<SubKey> SubKeys(Key key) = 0;
    /// @param name  In ASCII, in any letter case.
    [[nodiscard]] virtual std::optional<StoredValue> Value(Key key, std::string_view name) = 0;
};

/// How many keys are looked at in one registry. Real machines have a few thousand at most; only a registry that was
/// made or damaged to list keys without end gets there.
inline constexpr std::size_t kMostKeysOfWalk = 20'000;

/// Copies the keys that a description of a machine needs.
/// @param root        Name of the view's root below HKEY_LOCAL_MACHINE, such as "SYSTEM"; empty when it is that key.
/// @param controlSet  The control set to copy.
/// @return why not all of them were copied; empty when they were.
[[nodiscard]] std::string CopyWantedKeys(RegistryView& view, std::string_view root, const std::string& controlSet,
                                         RegistryTree& tree);
