#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Names of files as the platform matches and orders them, over lists of names from any file system. Only ASCII
/// letters are compared without case; the platform does so for all letters, so names with others may differ.

/// @return true when the platform's search for "*.inf" finds the name: it ends with ".inf", or its short name does. The
///         short name's extension is the first three characters after the last full stop, so "a.infx" and "a.inf~" are
///         found too. That is an approximation: a volume may have no short names at all, and what was chosen for a name
///         depends on the volume; Wine's has short names for every name.
[[nodiscard]] bool MatchesInfPattern(std::string_view name);

/// The names that a search for "*.inf" finds, directories too, in the order of NTFS and of Wine: by upper-cased name.
[[nodiscard]] std::vector<std::string> ListInfNames(std::vector<std::string> names);

/// @return the name in `names` that the platform would open for `name`: the same one, or else the first one, in the
///         order of a listing, that differs in letter case only. None when there is neither.
[[nodiscard]] std::optional<std::string> FindFileName(const std::vector<std::string>& names, std::string_view name);
