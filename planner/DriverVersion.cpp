#include "DriverVersion.h"

#include <charconv>
#include <cstddef>
#include <limits>

#include "Trimmed.h"

namespace {
/// @return the numbers between the separators; no value when something else is there or there are too many.
template <std::size_t Most>
std::optional<std::array<uint32_t, Most>> NumbersIn(std::string_view text, char separator, std::size_t least)
{
    std::array<uint32_t, Most> numbers{};
    std::size_t count = 0;
    for (;;) {
        const std::string_view part = text.substr(0, text.find(separator));
        uint32_t number = 0;
        const auto [end, error] = std::from_chars(part.data(), part.data() + part.size(), number);
        if (count == Most || part.empty() || error != std::errc() || end != part.data() + part.size()) {
            return std::nullopt;
        }
        numbers[count++] = number;
        if (part.size() == text.size()) {
            return count < least ? std::nullopt : std::optional(numbers);
        }
        text.remove_prefix(part.size() + 1);
    }
}

std::optional<std::array<uint32_t, 3>> DateIn(std::string_view text)
{
    const char separator = text.find('-') == std::string_view::npos ? '/' : '-';
    const auto parts = NumbersIn<3>(text, separator, 3);
    if (!parts) {
        return std::nullopt;
    }
    const auto [month, day, year] = *parts;
    if (month < 1 || month > 12 || day < 1 || day > 31 || year > std::numeric_limits<uint16_t>::max()) {
        return std::nullopt;
    }
    return std::array<uint32_t, 3>{year, month, day};
}
} // namespace

DriverVersion ParseDriverVersion(std::string_view text)
{
    text = text.substr(0, text.find(';'));
    const std::size_t comma = text.find(',');
    DriverVersion version;
    version.date = DateIn(Trimmed(text.substr(0, comma)));
    if (comma != std::string_view::npos) {
        version.version = NumbersIn<4>(Trimmed(text.substr(comma + 1)), '.', 1);
    }
    return version;
}

std::partial_ordering Compare(const DriverVersion& left, const DriverVersion& right)
{
    if (left.version && right.version && *left.version != *right.version) {
        return *left.version <=> *right.version;
    }
    if (left.date && right.date) {
        return *left.date <=> *right.date;
    }
    const bool sameVersion = left.version && right.version;
    return sameVersion ? std::partial_ordering::equivalent : std::partial_ordering::unordered;
}
