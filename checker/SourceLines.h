#pragma once

#include <cstddef>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

/// The lines of the kit's files, by which findings are recognised when they have moved.
class SourceLines
{
public:
    /// @return a line as UTF-8, with one space for each row of blanks and none at its ends; bytes that are not UTF-8
    /// stay
    ///         as they are. Empty for a line that is not there.
    [[nodiscard]] std::string NormalisedLine(const std::filesystem::path& file, std::size_t line);

private:
    std::map<std::filesystem::path, std::vector<std::string>> m_files;
};
