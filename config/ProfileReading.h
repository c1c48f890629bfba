#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>

#include "ModelSection.h"

/// All reading of the setup INI and of INF files: the platform's private-profile functions over a bounded buffer.
/// Files are named by their full path. A missing file, section or key is no error: the default or nothing is read.
/// While an AnswerReuse object lives, what was read once of a file that has not changed is not asked for again.

/// Reads one value.
/// @param section      Section name without brackets.
/// @param key          Key name; null reads the names of all keys, NUL-terminated and ended by an empty one.
/// @param defaultText  Read when the key is missing.
/// @param buffer       Cleared first; receives at most its size less one characters of a value, and a terminator.
/// @return number of characters read, without the terminator.
uint32_t ReadProfileText(const char* section, const char* key, const char* defaultText, std::span<char> buffer,
                         const std::string& file);

/// Reads a section's lines, "key=value" each, NUL-terminated and ended by an empty one.
/// @param buffer  Cleared first. When the section is missing it holds what the platform leaves in it.
/// @return number of characters read; the buffer's size less two when the section did not fit and was cut; 0 when the
///         section is missing or empty.
uint32_t ReadProfileSection(const char* section, std::span<char> buffer, const std::string& file);

/// Reads a model section of an INF. At most 32767 bytes of it are read, in the way of ReadProfileSection.
/// @return never null.
[[nodiscard]] std::shared_ptr<const ModelSection> ReadModelSection(const char* section, const std::string& file);
