#pragma once

#include <string>

#include "KitSearch.h"

/// Looking into one INF file: does one of its model sections list a device, and what is that device called?

/// Looks for a device in one model section of an INF. A match is recorded in the search's matchedHardwareId; a section
/// that was looked into leaves a description in its deviceDescription: after a match that of the matched line, after a
/// miss that of the section's last line.
/// @param key          Hardware ID without the bus prefix; letter case does not count.
/// @param sectionName  Model section; null gives false at once and leaves both texts alone.
/// @param infPath      Full path of the INF.
/// @return true when the first hardware ID of a line of the section is `key`.
[[nodiscard]] bool ListsDevice(const KitSearch& search, const std::string& key, const char* sectionName,
                               const std::string& infPath);

/// @return true when a file begins with the little-endian UTF-16 mark, false also when it cannot be read. The answer is
///         only traced in a search: the platform reads both forms.
bool BeginsWithUtf16Mark(const KitSearch& search, const std::string& path);
