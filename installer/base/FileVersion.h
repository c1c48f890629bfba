#pragma once

#include <span>
#include <string>

/// Reads the version of a file.
/// @param path  File to read. It may be a pattern: the first match only proves that something exists; the version is
///              read from the path as given.
/// @param out   At least 24 chars: "a.b.c.d" on success, untouched on failure.
/// @return true when the file has a version resource.
bool GetModuleVersion(const std::string& path, std::span<char> out);
