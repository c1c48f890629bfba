#include "Outcome.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace {
using Lines = std::vector<std::string>;

/// A number that stands for the content of lines that are not shown.
std::string Fingerprint(Lines::const_iterator begin, Lines::const_iterator end)
{
    std::uint32_t number = 2166136261U;
    for (auto line = begin; line != end; ++line) {
        for (const char c : *line + "\n") {
            number = (number ^ static_cast<unsigned char>(c)) * 16777619U;
        }
    }
    std::array<char, 9> text{};
    std::snprintf(text.data(), text.size(), "%08lx", static_cast<unsigned long>(number));
    return text.data();
}

/// Missing or additional lines in a row. Moves them from `lines` to `difference`.
void AppendRow(const std::string& sign, Lines& lines, Lines& difference)
{
    constexpr std::size_t kMostShown = 6;
    if (lines.size() <= kMostShown) {
        for (const std::string& line : lines) {
            difference.push_back(sign + line);
        }
    } else {
        difference.push_back(sign + lines.front());
        difference.push_back(sign + "(" + std::to_string(lines.size() - 2) + " lines, " +
                             Fingerprint(lines.begin() + 1, lines.end() - 1) + ")");
        difference.push_back(sign + lines.back());
    }
    lines.clear();
}
} // namespace

std::vector<std::string> Difference(const Lines& without, const Lines& with)
{
    // The longest common subsequence; what both begin and end with needs no table.
    std::size_t begin = 0;
    while (begin < without.size() && begin < with.size() && without[begin] == with[begin]) {
        ++begin;
    }
    std::size_t end = 0;
    while (end < without.size() - begin && end < with.size() - begin &&
           without[without.size() - 1 - end] == with[with.size() - 1 - end]) {
        ++end;
    }
    const std::size_t rows = without.size() - begin - end;
    const std::size_t columns = with.size() - begin - end;
    std::vector<std::vector<unsigned>> common(rows + 1, std::vector<unsigned>(columns + 1));
    for (std::size_t row = rows; row-- > 0;) {
        for (std::size_t column = columns; column-- > 0;) {
            common[row][column] = without[begin + row] == with[begin + column]
                                      ? common[row + 1][column + 1] + 1
                                      : std::max(common[row + 1][column], common[row][column + 1]);
        }
    }
    Lines difference;
    Lines missing;
    Lines added;
    std::size_t row = 0;
    std::size_t column = 0;
    while (row < rows || column < columns) {
        if (row < rows && column < columns && without[begin + row] == with[begin + column]) {
            AppendRow("- ", missing, difference);
            AppendRow("+ ", added, difference);
            ++row;
            ++column;
        } else if (column == columns || (row < rows && common[row + 1][column] >= common[row][column + 1])) {
            AppendRow("+ ", added, difference);
            missing.push_back(without[begin + row++]);
        } else {
            AppendRow("- ", missing, difference);
            added.push_back(with[begin + column++]);
        }
    }
    AppendRow("- ", missing, difference);
    AppendRow("+ ", added, difference);
    return difference;
}
