#include "Outcome.h"

#include <algorithm>

namespace {
using Lines = std::vector<std::string>;

/// Lines that are missing in a row.
void AppendMissing(const Lines& missing, Lines& difference)
{
    constexpr std::size_t kMostShown = 3;
    if (missing.size() <= kMostShown) {
        for (const std::string& line : missing) {
            difference.push_back("- " + line);
        }
        return;
    }
    difference.push_back("- " + missing.front());
    difference.push_back("- (" + std::to_string(missing.size() - 2) + " lines)");
    difference.push_back("- " + missing.back());
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
    std::size_t row = 0;
    std::size_t column = 0;
    while (row < rows || column < columns) {
        if (row < rows && column < columns && without[begin + row] == with[begin + column]) {
            AppendMissing(missing, difference);
            missing.clear();
            ++row;
            ++column;
        } else if (column == columns || (row < rows && common[row + 1][column] >= common[row][column + 1])) {
            missing.push_back(without[begin + row++]);
        } else {
            AppendMissing(missing, difference);
            missing.clear();
            difference.push_back("+ " + with[begin + column++]);
        }
    }
    AppendMissing(missing, difference);
    return difference;
}
