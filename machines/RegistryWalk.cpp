#include "RegistryWalk.h"

#include <algorithm>

#include "WantedKeys.h"

namespace {
/// Deeper than any key that is needed.
class Walk
{
public:
    Walk(RegistryView& view, const std::string& controlSet, RegistryTree& tree)
        : m_view(view), m_controlSet(controlSet.begin(), controlSet.end()), m_tree(tree)
    {
    }

    /// @param path     Of the key, whose names end up in the tree.
    /// @param pattern  What is left of the wanted path below the key; empty for the key itself.
    void Copy(RegistryView::Key key, std::vector<StoredName>& path, std::string_view pattern, const WantedKey& wanted)
    {
        if (pattern.empty()) {
            CopyValues(key, path, wanted);
            return;
        }
        const std::size_t end = std::min(pattern.find('\\'), pattern.size());
        const std::string_view name = pattern.substr(0, end);
        const std::string_view rest = pattern.substr(std::min(end + 1, pattern.size()));
        if (name != "*") {
            CopyBelow(key, path, {.units = std::u16string(name.begin(), name.end()), .wide = true}, rest, wanted);
        } else if (path.size() == 1) {
            CopyBelow(key, path, {.units = m_controlSet, .wide = true}, rest, wanted);
        } else {
            for (const StoredName& each : m_view.SubKeys(key)) {
                CopyBelow(key, path, each, rest, wanted);
            }
        }
    }

private:
    void CopyBelow(RegistryView::Key key, std::vector<StoredName>& path, const StoredName& name,
                   std::string_view pattern, const WantedKey& wanted)
    {
        if (const std::optional<RegistryView::Key> next = m_view.Open(key, name)) {
            path.push_back(name);
            Copy(*next, path, pattern, wanted);
            path.pop_back();
        }
    }

    void CopyValues(RegistryView::Key key, const std::vector<StoredName>& path, const WantedKey& wanted)
    {
        RegistryKey* const copy = m_tree.Enter(path);
        if (copy == nullptr) {
            return;
        }
        for (const std::string_view name : wanted.values) {
            if (std::optional<StoredValue> value = m_view.Value(key, name)) {
                m_tree.SetValue(*copy, UpperCaseName(name), *std::move(value));
            }
        }
    }

    RegistryView& m_view;
    std::u16string m_controlSet;
    RegistryTree& m_tree;
};
} // namespace

void CopyWantedKeys(RegistryView& view, std::string_view root, const std::string& controlSet, RegistryTree& tree)
{
    const std::optional<RegistryView::Key> top = view.Root();
    if (!top) {
        return;
    }
    Walk walk(view, controlSet, tree);
    for (const WantedKey& wanted : kWantedKeys) {
        std::vector<StoredName> path;
        std::string_view pattern = wanted.path;
        if (!root.empty()) {
            if (!pattern.starts_with(root)) {
                continue;
            }
            path.push_back({.units = std::u16string(root.begin(), root.end()), .wide = true});
            pattern.remove_prefix(root.size() + 1);
        }
        walk.Copy(*top, path, pattern, wanted);
    }
}
