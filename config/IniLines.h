#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// Reading of what the platform returns for a setup INI: lists of NUL-terminated texts, and values made of lists.

/// @param buffer  NUL-terminated texts, ended by an empty one. A list without its end, or a last text without its
///                terminator, ends with the buffer.
/// @return the texts in order; they refer to `buffer`.
[[nodiscard]] std::vector<std::string_view> LinesOf(std::span<const char> buffer);

/// @return everything after the last `marker` in `line` (letter case counts), or no value when it
///         stands nowhere. The last place counts, so a line "InfDir=InfDir=x" gives "x".
[[nodiscard]] std::optional<std::string_view> ValueAfterLast(std::string_view line, std::string_view marker);

/// Splits a list at its commas, last part first. Blanks are kept, parts may be empty: an empty list is one empty part.
[[nodiscard]] std::vector<std::string> SplitFromEnd(std::string_view list);

/// @return the number that `text` begins with: blanks, a sign, decimal digits. 0 when there are no digits; the nearest
///         number in range for one that is out of range.
[[nodiscard]] int LeadingNumber(std::string_view text);
