#include "WantedKeys.h"

#include <algorithm>

namespace {
bool Fits(std::span<const std::u16string_view> path, std::string_view pattern)
{
    for (std::size_t at = 0; at < path.size(); ++at) {
        const std::size_t end = pattern.find('\\');
        const std::string_view wanted = pattern.substr(0, end);
        const bool fits = wanted != "*" ? NameIs(path[at], wanted) : at != 1 || IsControlSet(path[at]);
        const bool isLast = at + 1 == path.size();
        if (!fits || isLast != (end == std::string_view::npos)) {
            return false;
        }
        pattern.remove_prefix(isLast ? pattern.size() : end + 1);
    }
    return !path.empty();
}

/// As Fits, for a path whose last name has lost its end.
bool MayFit(std::span<const std::u16string_view> path, std::string_view pattern)
{
    for (std::size_t at = 0; at < path.size(); ++at) {
        const std::size_t end = pattern.find('\\');
        const std::string_view wanted = pattern.substr(0, end);
        if (at + 1 == path.size()) {
            return wanted == "*" || NameIs(path[at], wanted.substr(0, path[at].size()));
        }
        const bool fits = wanted != "*" ? NameIs(path[at], wanted) : at != 1 || IsControlSet(path[at]);
        if (!fits || end == std::string_view::npos) {
            return false;
        }
        pattern.remove_prefix(end + 1);
    }
    return true;
}

/// How many names each path has: most keys of an export are passed over by that number.
constexpr std::array kDepths = [] {
    std::array<std::size_t, kWantedKeys.size()> depths{};
    std::ranges::transform(kWantedKeys, depths.begin(), [](const WantedKey& key) {
        return 1 + static_cast<std::size_t>(std::ranges::count(key.path, '\\'));
    });
    return depths;
}();
} // namespace

const WantedKey* FindWantedKey(std::span<const std::u16string_view> path)
{
    for (std::size_t key = 0; key < kWantedKeys.size(); ++key) {
        if (kDepths[key] == path.size() && Fits(path, kWantedKeys[key].path)) {
            return &kWantedKeys[key];
        }
    }
    return nullptr;
}

bool MayBecomeWanted(std::span<const std::u16string_view> path)
{
    return std::ranges::any_of(kWantedKeys, [path](const WantedKey& key) { return MayFit(path, key.path); });
}

bool IsDeviceKey(const WantedKey& key)
{
    return key.path.find(R"(ENUM\PCI)") != std::string_view::npos;
}

bool WantsValue(const WantedKey& key, std::u16string_view name)
{
    return std::ranges::any_of(key.values, [name](std::string_view wanted) { return NameIs(name, wanted); });
}

bool IsControlSet(std::u16string_view name)
{
    constexpr std::string_view kNumbered = "CONTROLSET";
    if (NameIs(name, "CURRENTCONTROLSET")) {
        return true;
    }
    return name.size() == kNumbered.size() + 3 && NameIs(name.substr(0, kNumbered.size()), kNumbered) &&
           std::ranges::all_of(name.substr(kNumbered.size()),
                               [](char16_t unit) { return unit >= u'0' && unit <= u'9'; });
}
