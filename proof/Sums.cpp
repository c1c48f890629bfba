#include "Sums.h"

#include <stdexcept>

#include "Lines.h"

namespace {
constexpr std::size_t kSumDigits = 64;
constexpr std::string_view kSeparator = "  ";
} // namespace

std::vector<ListedSum> ParseSums(std::string_view text)
{
    std::vector<ListedSum> sums;
    for (const std::string_view line : LinesOf(text)) {
        const bool isSum = line.find_first_not_of("0123456789abcdef") == kSumDigits &&
                           line.substr(kSumDigits).starts_with(kSeparator) &&
                           line.size() > kSumDigits + kSeparator.size();
        if (!isSum) {
            throw std::invalid_argument("sums.txt is damaged: " + std::string(line));
        }
        sums.push_back({.sum = std::string(line.substr(0, kSumDigits)),
                        .path = std::string(line.substr(kSumDigits + kSeparator.size()))});
    }
    if (sums.empty()) {
        throw std::invalid_argument("sums.txt is empty");
    }
    return sums;
}
