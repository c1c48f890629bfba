#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

/// What the readers need of a folder on this machine. What cannot be read counts as missing; nothing is thrown.

/// @return the names of the files and folders in `folder`, in the order of the file system.
[[nodiscard]] std::vector<std::string> NamesIn(const std::filesystem::path& folder);

/// @param path  A path below `folder` as the platform spells it: parts are separated by backslashes or slashes, and
///              letter case does not count.
/// @return where it is on this machine; none when it does not exist.
[[nodiscard]] std::optional<std::filesystem::path> FindPath(const std::filesystem::path& folder, std::string_view path);

/// @param error  Set to why it cannot be read, else cleared; a folder is `std::errc::is_a_directory`.
/// @return the bytes of a file; none when it cannot be read.
[[nodiscard]] std::optional<std::string> ReadFileBytes(const std::filesystem::path& file, std::error_code& error);
[[nodiscard]] std::optional<std::string> ReadFileBytes(const std::filesystem::path& file);
