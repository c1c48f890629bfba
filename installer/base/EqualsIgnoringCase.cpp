#include "EqualsIgnoringCase.h"

#include <algorithm>

bool EqualsIgnoringCase(std::string_view text, std::string_view other)
{
    // A lambda, because a pointer to a function would be called for each letter: searches compare names by the million.
    const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
    return std::ranges::equal(text, other, {}, lower, lower);
}
