#pragma once

#include <cstddef>
#include <string_view>

#include "LeadByte.h"

/// 8-bit text in a code page with characters of two bytes. The second byte of such a character is never taken for a
/// backslash, and a text is never cut between the two. Slashes and colons are safe: no code page has them as second
/// bytes.

/// @return position of the last backslash; std::string_view::npos when there is none.
[[nodiscard]] std::size_t LastBackslash(std::string_view path, LeadByteTest isLeadByte);

[[nodiscard]] bool EndsWithBackslash(std::string_view path, LeadByteTest isLeadByte);

/// @return true when `path` contains two backslashes in a row.
[[nodiscard]] bool HasDoubleBackslash(std::string_view path, LeadByteTest isLeadByte);

/// @return `text`, or as many whole characters of its start as fit into `maxBytes`.
[[nodiscard]] std::string_view CutToBytes(std::string_view text, std::size_t maxBytes, LeadByteTest isLeadByte);
