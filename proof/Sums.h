#pragma once

#include <string>
#include <string_view>
#include <vector>

/// A file of the bundle and what it must hold.
struct ListedSum
{
    std::string sum;  ///< SHA-256, 64 lower-case hexadecimal digits
    std::string path; ///< below the bundle's folder, with "/"
    bool operator==(const ListedSum&) const = default;
};

/// Reads the lines of sums.txt: sum, two spaces, path.
/// Throws std::invalid_argument for any other line, and for a text without lines: a damaged list must not pass.
[[nodiscard]] std::vector<ListedSum> ParseSums(std::string_view text);
