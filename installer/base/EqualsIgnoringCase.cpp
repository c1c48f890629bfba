#include "EqualsIgnoringCase.h"

#include <algorithm>

#include "AsciiCase.h"

bool EqualsIgnoringCase(std::string_view text, std::string_view other)
{
    // A lambda, because a pointer to a function would be called for each letter: searches compare names by the million.
    const auto lower = [](char c) { return LowerAscii(c); };
    return std::ranges::equal(text, other, {}, lower, lower);
}
