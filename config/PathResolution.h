#pragma once

#include <string>
#include <string_view>

#include "LeadByte.h"

/// Where the directories named in the setup INI lie. A second byte of a two-byte character is no backslash.

/// @return true when `path` counts as absolute: it holds a colon anywhere.
[[nodiscard]] bool IsAbsolutePath(std::string_view path);

/// Makes a path without a colon absolute.
/// @param path          Path as configured. A leading backslash means the drive of the base; a leading full stop means
///                      the base itself, whatever follows; anything else is below the base.
/// @param setupDir      The program's directory, without a trailing backslash.
/// @param levelsToRoot  How many levels the base is above `setupDir`; 0 for a number outside 1 to 260. Levels that
///                      `setupDir` does not have are ignored.
[[nodiscard]] std::string ResolveRelativePath(const std::string& path, const std::string& setupDir, int levelsToRoot,
                                              LeadByteTest isLeadByte);

/// @return `directory` with a backslash at its end: one is added when it has none, an empty text included.
[[nodiscard]] std::string WithTrailingBackslash(std::string directory, LeadByteTest isLeadByte);

/// @return the file name's part before its last full stop; the whole name when it has none.
[[nodiscard]] std::string BaseNameOf(std::string_view fileName);
