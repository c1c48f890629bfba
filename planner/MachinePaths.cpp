#include "MachinePaths.h"

#include <algorithm>

#include "EqualsIgnoringCase.h"
#include "FolderListing.h"

namespace {
constexpr int kMostAssumedLevels = 26;

std::string WithoutBackslash(std::string_view path)
{
    while (path.ends_with('\\')) {
        path.remove_suffix(1);
    }
    return std::string(path);
}
} // namespace

bool LiesIn(std::string_view path, std::string_view folder)
{
    while (folder.ends_with('\\')) {
        folder.remove_suffix(1);
    }
    return path.size() >= folder.size() && EqualsIgnoringCase(path.substr(0, folder.size()), folder) &&
           (path.size() == folder.size() || path[folder.size()] == '\\' || path[folder.size()] == '/');
}

MachinePaths::MachinePaths(const std::filesystem::path& kit, const std::string& setupDir, std::vector<FolderMap> maps)
{
    for (FolderMap& map : maps) {
        m_roots.push_back({.onMachine = WithoutBackslash(map.onMachine), .here = std::move(map.here)});
    }
    std::error_code error;
    std::filesystem::path here = std::filesystem::absolute(kit, error).lexically_normal();
    if (!here.has_filename()) {
        here = here.parent_path();
    }
    std::string onMachine = WithoutBackslash(setupDir);
    m_roots.push_back({.onMachine = onMachine, .here = kit, .isKit = true});
    for (auto backslash = onMachine.rfind('\\'); backslash != std::string::npos && here.has_relative_path();
         backslash = onMachine.rfind('\\')) {
        onMachine.resize(backslash);
        here = here.parent_path();
        m_roots.push_back({.onMachine = onMachine, .here = here});
    }
    std::ranges::stable_sort(m_roots, std::ranges::greater{}, [](const Root& root) { return root.onMachine.size(); });
}

const MachinePaths::Root* MachinePaths::RootOf(std::string_view path) const
{
    const auto root = std::ranges::find_if(m_roots, [path](const Root& r) { return LiesIn(path, r.onMachine); });
    return root == m_roots.end() ? nullptr : &*root;
}

std::optional<std::filesystem::path> MachinePaths::Find(std::string_view path) const
{
    const Root* const root = RootOf(path);
    return root == nullptr ? std::nullopt : FindPath(root->here, path.substr(root->onMachine.size()));
}

std::string MachinePaths::NameOf(std::string_view path) const
{
    const Root* const root = RootOf(path);
    if (root == nullptr || !root->isKit) {
        return std::string(path);
    }
    std::string name(path.substr(root->onMachine.size()));
    std::ranges::replace(name, '\\', '/');
    name.erase(0, std::min(name.find_first_not_of('/'), name.size()));
    while (name.ends_with('/')) {
        name.pop_back();
    }
    return name.empty() ? "." : name;
}

std::string AssumedSetupDir(int levelsToRoot)
{
    std::string directory = "C:";
    for (int level = std::min(levelsToRoot, kMostAssumedLevels); level > 1; --level) {
        directory += "\\Above" + std::to_string(level - 1);
    }
    return directory + R"(\Kit)";
}
