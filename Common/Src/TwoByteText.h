#pragma once

#include <cstddef>
#include <string_view>

#include "CharacterRule.h"

/// 8-bit text in a code page with characters of several bytes. The second byte of a character of two is not a
/// backslash, and a text is never cut inside a character. Slashes and colons need no care: they are second bytes in no
/// code page, and the later bytes of a UTF-8 character are no ASCII characters at all.

/// @return position of the last backslash; std::string_view::npos when there is none.
[[nodiscard]] std::size_t LastBackslash(std::string_view path, LeadByteTest isLeadByte);

[[nodiscard]] bool EndsWithBackslash(std::string_view path, LeadByteTest isLeadByte);

/// @return true when `path` contains two backslashes in a row.
[[nodiscard]] bool HasDoubleBackslash(std::string_view path, LeadByteTest isLeadByte);

/// @return `text`, or as many whole characters of its start as fit into `maxBytes`.
[[nodiscard]] std::string_view CutToBytes(std::string_view text, std::size_t maxBytes, CharacterRule rule);
