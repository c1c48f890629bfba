#pragma once

#include <span>
#include <string>
#include <string_view>

#include "Machine.h"

/// What `morvix-kit check` finds in a kit. A number never changes its meaning; numbers that are no longer used stay
/// unused.

struct Rule
{
    int number = 0;
    Severity severity = Severity::Note;
    std::string_view name; ///< a few words, for lists
    std::string_view harm; ///< what happens to the kit's users, one sentence
    std::string_view cure; ///< what its author does about it, one sentence
    std::string_view why;  ///< what the installer does that makes it so
    std::string_view bad;  ///< lines of a kit that yield the finding; a text where lines cannot show it
    std::string_view good; ///< the same lines without it
};

/// @return all rules, by number.
[[nodiscard]] std::span<const Rule> AllRules();

/// @return null for a number that no rule has.
[[nodiscard]] const Rule* FindRule(int number);
/// @param id  "MK" and the number, letter case aside, or the number alone.
[[nodiscard]] const Rule* FindRule(std::string_view id);

/// @return "MK" and the rule's number.
[[nodiscard]] std::string IdOf(const Rule& rule);
