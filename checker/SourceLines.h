#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// The lines of the kit's files, by which findings are recognised when they have moved.
class SourceLines
{
public:
    /// Findings come file by file and line by line: one file is kept, and taken apart as far as it is asked for.
    /// @return a line as UTF-8, with one space for each row of blanks and none at its ends; bytes that are not UTF-8
    ///         stay as they are. Empty for a line that is not there.
    [[nodiscard]] std::string NormalisedLine(const std::filesystem::path& file, std::size_t line);

private:
    void Read(const std::filesystem::path& file);
    void ReadLine();

    std::filesystem::path m_file;
    std::string m_text;
    std::optional<std::string_view> m_rest; ///< of the text, after the lines; none after the last one
    std::vector<std::string_view> m_lines;
};
