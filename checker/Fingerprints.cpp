#include "Fingerprints.h"

#include <array>
#include <cstdint>
#include <map>
#include <string_view>
#include <tuple>

namespace {
/// FNV-1a; each text counts with its end.
uint64_t Hashed(uint64_t hash, std::string_view text)
{
    constexpr uint64_t kPrime = 1099511628211U;
    for (const char c : text) {
        hash = (hash ^ static_cast<unsigned char>(c)) * kPrime;
    }
    return (hash ^ 0xFFU) * kPrime;
}

std::string Hexadecimal(uint64_t number)
{
    constexpr std::string_view kDigits = "0123456789abcdef";
    std::string text(16, '0');
    for (auto digit = text.rbegin(); digit != text.rend(); ++digit, number >>= 4U) {
        *digit = kDigits[number & 0xFU];
    }
    return text;
}
} // namespace

std::vector<std::string> FingerprintsOf(const std::vector<Finding>& findings)
{
    std::map<std::tuple<int, std::string_view, std::string_view>, int> seen;
    std::vector<std::string> prints;
    prints.reserve(findings.size());
    for (const Finding& finding : findings) {
        const int number = seen[{finding.rule, finding.file, finding.key}]++;
        constexpr uint64_t kStart = 14695981039346656037U;
        uint64_t hash = kStart;
        for (const std::string& text :
             {std::to_string(finding.rule), finding.file, finding.key, std::to_string(number)}) {
            hash = Hashed(hash, text);
        }
        prints.push_back(Hexadecimal(hash));
    }
    return prints;
}
