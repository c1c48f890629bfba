#include "CodePage.h"

#include <algorithm>
#include <span>
#include <utility>

#include "PairRanges.h"
#include "SimilarCharacters.h"
#include "UpperHalves.h"

namespace {
constexpr char16_t kReplacement = 0xFFFD;
// A unit of a Unicode file that the code page lacks. No pair begins with the byte 0xFF, so both are free.
constexpr char16_t kReplaced = 0xFF00; ///< beside the byte by which it is replaced
constexpr char16_t kReplacedPair = 0xFEFF;

struct ByteRange
{
    unsigned char first;
    unsigned char last;
};

/// A code page with characters of two bytes.
struct PairPage
{
    uint32_t number;
    std::span<const ByteRange> leadBytes;
    std::span<const ByteRange> trailBytes;
    std::span<const PairRange> missing;
    std::span<const MovedPairs> moved;
    char16_t missingPair; ///< unit that replaces a pair that does not exist
};

constexpr std::array<ByteRange, 2> kJapaneseLeads{{{0x81, 0x9F}, {0xE0, 0xFC}}};
constexpr std::array<ByteRange, 1> kOtherLeads{{{0x81, 0xFE}}};
constexpr std::array<ByteRange, 2> kJapaneseTrails{{{0x40, 0x7E}, {0x80, 0xFC}}};
constexpr std::array<ByteRange, 2> kSimplifiedChineseTrails{{{0x40, 0x7E}, {0x80, 0xFE}}};
constexpr std::array<ByteRange, 3> kKoreanTrails{{{0x41, 0x5A}, {0x61, 0x7A}, {0x81, 0xFE}}};
constexpr std::array<ByteRange, 2> kTraditionalChineseTrails{{{0x40, 0x7E}, {0xA1, 0xFE}}};

constexpr std::array<PairPage, 4> kPairPages{{
    {932, kJapaneseLeads, kJapaneseTrails, kMissingJapanese, kMovedJapanese, 0x8145},
    {936, kOtherLeads, kSimplifiedChineseTrails, {}, {}, u'?'},
    {949, kOtherLeads, kKoreanTrails, kMissingKorean, {}, u'?'},
    {950, kOtherLeads, kTraditionalChineseTrails, kMissingTraditionalChinese, kMovedTraditionalChinese, u'?'},
}};

const PairPage* PairPageOf(uint32_t number)
{
    const auto* const page = std::ranges::find(kPairPages, number, &PairPage::number);
    return page == kPairPages.end() ? nullptr : page;
}

const UpperHalf& UpperHalfOf(uint32_t number)
{
    switch (number) {
        case 1250:
            return kCentralEuropean;
        case 1251:
            return kCyrillic;
        default:
            return kWestern;
    }
}

bool Holds(std::span<const ByteRange> ranges, unsigned char byte)
{
    return std::ranges::any_of(ranges, [byte](ByteRange range) { return byte >= range.first && byte <= range.last; });
}

/// The lower-case form of a letter of the three code pages with one byte a character.
char16_t LowerOf(char16_t letter)
{
    if ((letter >= u'A' && letter <= u'Z') || (letter >= 0x00C0 && letter <= 0x00DE && letter != 0x00D7) ||
        (letter >= 0x0410 && letter <= 0x042F)) {
        return static_cast<char16_t>(letter + 0x20);
    }
    if (letter >= 0x0400 && letter <= 0x040F) {
        return static_cast<char16_t>(letter + 0x50);
    }
    if (letter == 0x0178) {
        return 0x00FF;
    }
    // Beyond those, capital and small letters alternate; the capital one is even, and odd from 0x0139 to 0x0148 and
    // from 0x0179 on.
    const bool latin = letter >= 0x0100 && letter <= 0x017E;
    const bool cyrillic = letter == 0x0490;
    const bool capitalIsOdd = (letter >= 0x0139 && letter <= 0x0148) || (letter >= 0x0179 && letter <= 0x017E);
    if ((latin || cyrillic) && (letter % 2 == 1) == capitalIsOdd) {
        return static_cast<char16_t>(letter + 1);
    }
    return letter;
}

/// The byte by which a code page with one byte a character replaces a UTF-16 unit that it lacks.
unsigned char SimilarByte(char16_t utf16, uint32_t number)
{
    if (utf16 >= 0xFF01 && utf16 <= 0xFF5E) {
        return static_cast<unsigned char>(utf16 - 0xFF01 + u'!');
    }
    const auto* const row = std::ranges::lower_bound(kSimilarCharacters, utf16, {}, &SimilarCharacter::utf16);
    if (row == kSimilarCharacters.end() || row->utf16 != utf16) {
        return '?';
    }
    unsigned char byte = row->western;
    if (number == 1250) {
        byte = row->centralEuropean;
    } else if (number == 1251) {
        byte = row->cyrillic;
    }
    return byte == 0 ? '?' : byte;
}

struct Utf8Character
{
    std::size_t bytes;
    char32_t code;
};

/// Number of bytes that follow the first byte of a character; 0 after a byte that begins none.
std::size_t FollowingUtf8Bytes(unsigned first)
{
    if (first >= 0xC2 && first <= 0xDF) {
        return 1;
    }
    if (first >= 0xE0 && first <= 0xEF) {
        return 2;
    }
    return first >= 0xF0 && first <= 0xF4 ? 3 : 0;
}

/// @param code   The bits of the first bytes of a character.
/// @param after  How many of its bytes follow.
/// @return true when a shorter form of the character exists, or when it is a surrogate or beyond the last code.
bool IsForbiddenUtf8(char32_t code, std::size_t after)
{
    if (after == 2) {
        return code < 0x10 || code > 0x10F;
    }
    return after == 1 && (code < 0x20 || (code >= 0x360 && code <= 0x37F));
}

/// The character at the beginning of `bytes`. An invalid one becomes one replacement: for the bytes up to the wrong
/// one, or for all of them when the file ends within the character.
Utf8Character Utf8CharacterAt(std::string_view bytes)
{
    const unsigned first = static_cast<unsigned char>(bytes.front());
    if (first < 0x80) {
        return {1, first};
    }
    const std::size_t following = FollowingUtf8Bytes(first);
    if (following == 0) {
        return {1, kReplacement};
    }
    if (bytes.size() <= following) {
        return {bytes.size(), kReplacement};
    }
    char32_t code = first & (0x3FU >> following);
    for (std::size_t at = 1; at <= following; ++at) {
        const unsigned byte = static_cast<unsigned char>(bytes[at]);
        if (byte < 0x80 || byte > 0xBF) {
            return {at, kReplacement};
        }
        code = (code << 6) | (byte & 0x3FU);
        const std::size_t after = following - at;
        if (IsForbiddenUtf8(code, after)) {
            return {at + 1, kReplacement};
        }
    }
    return {following + 1, code};
}

void AppendUtf8(char32_t code, std::string& bytes)
{
    const auto append = [&bytes](char32_t byte) { bytes.push_back(static_cast<char>(byte)); };
    if (code < 0x80) {
        append(code);
    } else if (code < 0x800) {
        append(0xC0 | (code >> 6));
        append(0x80 | (code & 0x3F));
    } else if (code < 0x10000) {
        append(0xE0 | (code >> 12));
        append(0x80 | ((code >> 6) & 0x3F));
        append(0x80 | (code & 0x3F));
    } else {
        append(0xF0 | (code >> 18));
        append(0x80 | ((code >> 12) & 0x3F));
        append(0x80 | ((code >> 6) & 0x3F));
        append(0x80 | (code & 0x3F));
    }
}

void EncodeUtf8(ProfileUnitsView units, std::string& bytes)
{
    for (std::size_t at = 0; at < units.size(); ++at) {
        const char16_t unit = units[at];
        const bool high = unit >= 0xD800 && unit <= 0xDBFF;
        const bool low = unit >= 0xDC00 && unit <= 0xDFFF;
        if (high && at + 1 < units.size() && units[at + 1] >= 0xDC00 && units[at + 1] <= 0xDFFF) {
            const char32_t upper = unit - 0xD800U;
            const char32_t lower = units[at + 1] - 0xDC00U;
            AppendUtf8(0x10000 + (upper << 10) + lower, bytes);
            ++at;
        } else {
            AppendUtf8(high || low ? kReplacement : unit, bytes);
        }
    }
}
} // namespace

std::size_t DecodeUtf8Character(std::string_view bytes, ProfileUnits& utf16)
{
    const Utf8Character character = Utf8CharacterAt(bytes);
    if (character.code < 0x10000) {
        utf16.push_back(static_cast<char16_t>(character.code));
    } else {
        const char32_t rest = character.code - 0x10000;
        utf16.push_back(static_cast<char16_t>(0xD800 + (rest >> 10)));
        utf16.push_back(static_cast<char16_t>(0xDC00 + (rest & 0x3FF)));
    }
    return character.bytes;
}

CodePage::CodePage(uint32_t number) : m_number(number)
{
    if (number == 65001) {
        m_kind = Kind::Utf8;
    } else if (PairPageOf(number) != nullptr) {
        m_kind = Kind::Double;
    }
    const UpperHalf& upper = UpperHalfOf(number);
    for (std::size_t byte = 0; byte < m_lower.size(); ++byte) {
        m_lower[byte] = static_cast<char>(byte);
        if (byte < 0x80) {
            m_lower[byte] = static_cast<char>(LowerOf(static_cast<char16_t>(byte)));
        } else if (m_kind == Kind::Single) {
            const auto* const lower = std::ranges::find(upper, LowerOf(upper[byte - 0x80]));
            if (lower != upper.end()) {
                m_lower[byte] = static_cast<char>(0x80 + (lower - upper.begin()));
            }
        }
    }
}

bool IsLeadByteIn(uint32_t codePage, unsigned char byte)
{
    const PairPage* const page = PairPageOf(codePage);
    return page != nullptr && Holds(page->leadBytes, byte);
}

bool CodePage::IsLeadByte(unsigned char byte) const
{
    return m_kind == Kind::Double && IsLeadByteIn(m_number, byte);
}

std::size_t CodePage::DecodePair(std::string_view bytes, ProfileUnits& units) const
{
    const PairPage& page = *PairPageOf(m_number);
    // A first byte takes what follows with it, the end of a line too, but no NUL.
    if (bytes.size() < 2 || bytes[1] == '\0') {
        units.push_back(page.missingPair);
        return 1;
    }
    const auto trail = static_cast<unsigned char>(bytes[1]);
    const auto pair = static_cast<char16_t>((static_cast<unsigned char>(bytes[0]) << 8) | trail);
    const auto isPair = [pair](const auto& range) { return pair >= range.first && pair <= range.last; };
    if (!Holds(page.trailBytes, trail) || std::ranges::any_of(page.missing, isPair)) {
        units.push_back(page.missingPair);
    } else if (const auto moved = std::ranges::find_if(page.moved, isPair); moved != page.moved.end()) {
        units.push_back(static_cast<char16_t>(moved->to + (pair - moved->first)));
    } else {
        units.push_back(pair);
    }
    return 2;
}

std::size_t CodePage::DecodeCharacter(std::string_view bytes, ProfileUnits& units) const
{
    const auto first = static_cast<unsigned char>(bytes.front());
    if (m_kind == Kind::Utf8) {
        return DecodeUtf8Character(bytes, units);
    }
    if (IsLeadByte(first)) {
        return DecodePair(bytes, units);
    }
    units.push_back(first);
    return 1;
}

ProfileUnits CodePage::Decode(std::string_view bytes) const
{
    ProfileUnits units;
    while (!bytes.empty()) {
        bytes.remove_prefix(DecodeCharacter(bytes, units));
    }
    return units;
}

ProfileUnits CodePage::DecodeQuestion(std::string_view bytes) const
{
    ProfileUnits units;
    while (!bytes.empty() && (bytes.size() > 1 || !IsLeadByte(static_cast<unsigned char>(bytes.front())))) {
        bytes.remove_prefix(DecodeCharacter(bytes, units));
    }
    return units;
}

char16_t CodePage::UnitOfUtf16(char16_t utf16) const
{
    if (utf16 < 0x80 || m_kind == Kind::Utf8) {
        return utf16;
    }
    if (m_kind == Kind::Double) {
        return kReplacedPair;
    }
    const UpperHalf& upper = UpperHalfOf(m_number);
    const auto* const known = std::ranges::find(upper, utf16);
    if (known != upper.end()) {
        return static_cast<char16_t>(0x80 + (known - upper.begin()));
    }
    return static_cast<char16_t>(kReplaced | SimilarByte(utf16, m_number));
}

bool CodePage::CanBeAsked(char16_t unit) const
{
    return m_kind == Kind::Utf8 || unit < kReplacedPair;
}

void CodePage::Encode(ProfileUnitsView units, std::string& bytes) const
{
    if (m_kind == Kind::Utf8) {
        EncodeUtf8(units, bytes);
        return;
    }
    for (const char16_t unit : units) {
        if (unit == kReplacedPair) {
            bytes.append("??");
            continue;
        }
        if (unit >= 0x100 && unit < kReplacedPair) {
            bytes.push_back(static_cast<char>(unit >> 8));
        }
        bytes.push_back(static_cast<char>(unit & 0xFF));
    }
}

CodePage::Size CodePage::CharacterSize(std::string_view bytes) const
{
    if (m_kind == Kind::Utf8) {
        const Utf8Character character = Utf8CharacterAt(bytes);
        return {character.bytes, character.code < 0x10000 ? 1U : 2U};
    }
    const bool pair = bytes.size() > 1 && IsLeadByte(static_cast<unsigned char>(bytes.front()));
    return {pair ? 2U : 1U, 1};
}
