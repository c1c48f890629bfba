#include "FileNames.h"

#include <algorithm>

#include "AsciiCase.h"

namespace {
constexpr std::string_view kInf = ".INF";

// A lambda, because a pointer to a function would be called for each letter.
constexpr auto kUpper = [](char c) { return UpperAscii(c); };

bool EqualNames(std::string_view left, std::string_view right)
{
    return std::ranges::equal(left, right, {}, kUpper, kUpper);
}

bool ComesBefore(const std::string& left, const std::string& right)
{
    const auto before = [](char a, char b) { return static_cast<unsigned char>(a) < static_cast<unsigned char>(b); };
    if (EqualNames(left, right)) {
        // A case-sensitive file system can have both; the platform could not.
        return left < right;
    }
    return std::ranges::lexicographical_compare(left, right, before, kUpper, kUpper);
}
} // namespace

bool MatchesInfPattern(std::string_view name)
{
    const std::size_t dot = name.rfind('.');
    return dot != std::string_view::npos && EqualNames(name.substr(dot, kInf.size()), kInf);
}

std::vector<std::string> ListInfNames(std::vector<std::string> names)
{
    std::erase_if(names, [](const std::string& name) { return !MatchesInfPattern(name); });
    std::ranges::sort(names, ComesBefore);
    return names;
}

std::optional<std::string> FindFileName(const std::vector<std::string>& names, std::string_view name)
{
    const std::string* found = nullptr;
    for (const std::string& candidate : names) {
        if (candidate == name) {
            return candidate;
        }
        if (EqualNames(candidate, name) && (found == nullptr || ComesBefore(candidate, *found))) {
            found = &candidate;
        }
    }
    return found == nullptr ? std::nullopt : std::optional(*found);
}
