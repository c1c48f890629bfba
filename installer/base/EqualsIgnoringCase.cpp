#include "EqualsIgnoringCase.h"

#include <algorithm>

namespace {
char LowerAscii(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}
} // namespace

bool EqualsIgnoringCase(std::string_view text, std::string_view other)
{
    return std::ranges::equal(text, other, {}, LowerAscii, LowerAscii);
}
