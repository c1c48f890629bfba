#include "StoredText.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace {
constexpr char32_t kReplacement = 0xFFFD;
// Units are copied as they are in the file.
static_assert(std::endian::native == std::endian::little);

constexpr char16_t UpperCase(char16_t unit)
{
    return unit >= u'a' && unit <= u'z' ? static_cast<char16_t>(unit - u'a' + u'A') : unit;
}

// An object rather than a function: it is inlined where the algorithms call it.
constexpr auto InUpperCase = [](auto unit) { return UpperCase(static_cast<char16_t>(unit)); };

void Append(std::u16string& text, char32_t character)
{
    if (character < 0x10000) {
        text.push_back(static_cast<char16_t>(character));
        return;
    }
    character -= 0x10000;
    text.push_back(static_cast<char16_t>(0xD800 + (character >> 10)));
    text.push_back(static_cast<char16_t>(0xDC00 + (character & 0x3FF)));
}

void Append(std::string& text, char32_t character)
{
    const auto continuation = [&](unsigned shift) {
        text.push_back(static_cast<char>(0x80 | ((character >> shift) & 0x3F)));
    };
    if (character < 0x80) {
        text.push_back(static_cast<char>(character));
    } else if (character < 0x800) {
        text.push_back(static_cast<char>(0xC0 | (character >> 6)));
        continuation(0);
    } else if (character < 0x10000) {
        text.push_back(static_cast<char>(0xE0 | (character >> 12)));
        continuation(6);
        continuation(0);
    } else {
        text.push_back(static_cast<char>(0xF0 | (character >> 18)));
        continuation(12);
        continuation(6);
        continuation(0);
    }
}

/// Takes one character from the front of UTF-8 text that is not empty.
char32_t TakeCharacter(std::string_view& text)
{
    const auto first = static_cast<unsigned char>(text.front());
    text.remove_prefix(1);
    if (first < 0x80) {
        return first;
    }
    const unsigned more = first >= 0xC2 && first <= 0xDF   ? 1
                          : first >= 0xE0 && first <= 0xEF ? 2
                          : first >= 0xF0 && first <= 0xF4 ? 3
                                                           : 0;
    char32_t character = more == 0 ? 0 : first & (0x3FU >> more);
    for (unsigned at = 0; at < more; ++at) {
        if (text.size() <= at || (static_cast<unsigned char>(text[at]) & 0xC0) != 0x80) {
            return kReplacement;
        }
        character = (character << 6) | (static_cast<unsigned char>(text[at]) & 0x3F);
    }
    constexpr char32_t kLowest[] = {0xFFFFFFFF, 0x80, 0x800, 0x10000};
    if (character < kLowest[more] || character > 0x10FFFF || (character >= 0xD800 && character <= 0xDFFF)) {
        return kReplacement;
    }
    text.remove_prefix(more);
    return character;
}

bool IsHighSurrogate(char16_t unit)
{
    return unit >= 0xD800 && unit <= 0xDBFF;
}

bool IsLowSurrogate(char16_t unit)
{
    return unit >= 0xDC00 && unit <= 0xDFFF;
}
} // namespace

std::u16string UpperCaseName(std::u16string_view name)
{
    std::u16string upper(name);
    std::ranges::transform(upper, upper.begin(), UpperCase);
    return upper;
}

bool NameOrder::operator()(std::u16string_view left, std::u16string_view right) const
{
    return std::ranges::lexicographical_compare(left, right, {}, InUpperCase, InUpperCase);
}

bool NameOrder::operator()(std::u16string_view left, std::string_view right) const
{
    return std::ranges::lexicographical_compare(left, right, {}, InUpperCase, InUpperCase);
}

bool NameOrder::operator()(std::string_view left, std::u16string_view right) const
{
    return std::ranges::lexicographical_compare(left, right, {}, InUpperCase, InUpperCase);
}

std::u16string UpperCaseName(std::string_view name)
{
    return UpperCaseName(std::u16string(name.begin(), name.end()));
}

bool NameIs(std::u16string_view name, std::string_view upper)
{
    return std::ranges::equal(
        name, upper, [](char16_t unit, char letter) { return UpperCase(unit) == static_cast<unsigned char>(letter); });
}

std::string EightBitText::Convert(std::u16string_view text) const
{
    if (std::ranges::all_of(text, [](char16_t unit) { return unit < 0x80; })) {
        std::string bytes(text.size(), '\0');
        std::ranges::transform(text, bytes.begin(), [](char16_t unit) { return static_cast<char>(unit); });
        return bytes;
    }
    return m_convert(text, m_codePage);
}

std::string EightBitText::Of(const StoredName& name) const
{
    if (name.wide) {
        return Convert(name.units);
    }
    std::string bytes(name.units.size(), '\0');
    std::ranges::transform(name.units, bytes.begin(), [](char16_t unit) { return static_cast<char>(unit); });
    return bytes;
}

EightBitValue EightBitText::Of(const StoredValue& value) const
{
    return {.type = value.type,
            .bytes = value.wide && HoldsText(value.type) ? Convert(UnitsOf(value.bytes)) : value.bytes};
}

std::u16string FromUtf8(std::string_view text)
{
    std::u16string units;
    units.reserve(text.size());
    while (!text.empty()) {
        Append(units, TakeCharacter(text));
    }
    return units;
}

std::string ToUtf8(std::u16string_view text)
{
    std::string bytes;
    bytes.reserve(text.size());
    for (std::size_t at = 0; at < text.size(); ++at) {
        const char16_t unit = text[at];
        if (IsHighSurrogate(unit) && at + 1 < text.size() && IsLowSurrogate(text[at + 1])) {
            ++at;
            Append(bytes, 0x10000 + ((static_cast<char32_t>(unit) - 0xD800) << 10) + (text[at] - 0xDC00U));
        } else {
            Append(bytes, IsHighSurrogate(unit) || IsLowSurrogate(unit) ? kReplacement : char32_t{unit});
        }
    }
    return bytes;
}

std::u16string UnitsOf(std::string_view bytes)
{
    std::u16string units;
    ReadUnits(bytes, units);
    return units;
}

void ReadUnits(std::string_view bytes, std::u16string& units)
{
    units.resize(bytes.size() / 2);
    // memcpy takes no null pointer, not even for nothing.
    if (!units.empty()) {
        std::memcpy(units.data(), bytes.data(), units.size() * sizeof(char16_t));
    }
}

std::string BytesOf(std::u16string_view units)
{
    std::string bytes(units.size() * sizeof(char16_t), '\0');
    if (!units.empty()) {
        std::memcpy(bytes.data(), units.data(), bytes.size());
    }
    return bytes;
}
