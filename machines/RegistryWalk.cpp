#include "RegistryWalk.h"

#include <algorithm>
#include <set>
#include <utility>

#include "WantedKeys.h"

namespace {
constexpr char kTreeIsFull[] = "more devices and values than any machine has";

/// Goes down to each key that fits a path with "*" in it. It does not go deeper than the path, so a
/// registry in which a key lies below itself ends too.
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
        if (!m_trouble.empty()) {
            return;
        }
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
            CopyEach(key, path, rest, wanted);
        }
    }
    /// @return why the walk was not finished; empty when it was.
    [[nodiscard]] const std::string& Trouble() const { return m_trouble; }

private:
    void CopyBelow(RegistryView::Key key, std::vector<StoredName>& path, const StoredName& name,
                   std::string_view pattern, const WantedKey& wanted)
    {
        if (const std::optional<RegistryView::Key> next = m_view.Open(key, name)) {
            Enter(*next, path, name, pattern, wanted);
        }
    }

    void CopyEach(RegistryView::Key key, std::vector<StoredName>& path, std::string_view pattern,
                  const WantedKey& wanted)
    {
        // No key has two sub-keys of one name. A damaged list repeats them, at every level, which takes minutes.
        std::set<std::u16string> met;
        for (const RegistryView::SubKey& each : m_view.SubKeys(key)) {
            if (m_trouble.empty() && met.insert(UpperCaseName(each.name.units)).second) {
                Enter(each.key, path, each.name, pattern, wanted);
            }
        }
    }

    void Enter(RegistryView::Key key, std::vector<StoredName>& path, const StoredName& name, std::string_view pattern,
               const WantedKey& wanted)
    {
        if (++m_keys > kMostKeysOfWalk) {
            m_trouble = "more keys than any machine has";
            return;
        }
        path.push_back(name);
        Copy(key, path, pattern, wanted);
        path.pop_back();
    }

    void CopyValues(RegistryView::Key key, const std::vector<StoredName>& path, const WantedKey& wanted)
    {
        RegistryKey* const copy = m_tree.Enter(path);
        if (copy == nullptr) {
            m_trouble = kTreeIsFull;
            return;
        }
        for (const std::string_view name : wanted.values) {
            std::optional<StoredValue> value = m_view.Value(key, name);
            if (value && !m_tree.SetValue(*copy, UpperCaseName(name), *std::move(value))) {
                m_trouble = kTreeIsFull;
            }
        }
    }

    RegistryView& m_view;
    std::u16string m_controlSet;
    RegistryTree& m_tree;
    std::size_t m_keys = 0; // that were looked at
    std::string m_trouble;
};
} // namespace

std::string CopyWantedKeys(RegistryView& view, std::string_view root, const std::string& controlSet, RegistryTree& tree)
{
    const std::optional<RegistryView::Key> top = view.Root();
    if (!top) {
        return {};
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
    return walk.Trouble();
}
