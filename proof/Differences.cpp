#include "Differences.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "Lines.h"

std::string Differences(std::string_view before, std::string_view after)
{
    std::vector<std::string_view> old = LinesOf(before);
    std::vector<std::string_view> now = LinesOf(after);
    std::ranges::sort(old);
    std::ranges::sort(now);
    std::vector<std::string_view> gone;
    std::vector<std::string_view> come;
    std::ranges::set_difference(old, now, std::back_inserter(gone));
    std::ranges::set_difference(now, old, std::back_inserter(come));
    std::vector<std::pair<std::string_view, char>> changes;
    for (const std::string_view line : gone) {
        changes.emplace_back(line, '-');
    }
    for (const std::string_view line : come) {
        changes.emplace_back(line, '+');
    }
    std::ranges::sort(changes);
    std::string text;
    for (const auto& [line, sign] : changes) {
        text += sign;
        text += ' ';
        text += line;
        text += '\n';
    }
    return text;
}
