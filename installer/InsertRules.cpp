#include "InsertRules.h"

#include <cstddef>

namespace {
constexpr std::string_view kDigits = "0123456789";
constexpr std::string_view kNumberConversions = "cCdiouxX";

/// @param rest  What follows the number of an insert.
bool BeginsWithNumberFormat(std::string_view rest)
{
    if (!rest.starts_with('!')) {
        return false;
    }
    const std::size_t end = rest.find('!', 1);
    return end != std::string_view::npos && kNumberConversions.find(rest[end - 1]) != std::string_view::npos;
}
} // namespace

bool InsertsAreNumbers(std::string_view message)
{
    for (std::size_t at = message.find('%'); at != std::string_view::npos; at = message.find('%', at)) {
        const std::string_view rest = message.substr(at + 1);
        if (rest.empty()) {
            return true;
        }
        // %0, %% and %n are not inserts.
        if (rest.front() >= '1' && rest.front() <= '9') {
            const std::size_t digits = rest.size() > 1 && kDigits.find(rest[1]) != std::string_view::npos ? 2 : 1;
            if (!BeginsWithNumberFormat(rest.substr(digits))) {
                return false;
            }
        }
        at += 2;
    }
    return true;
}
