#include "Profile.h"

#include <algorithm>
#include <bit>
#include <stdexcept>

#include "ProfileAnswers.h"
#include "ProfileParser.h"

namespace {
bool IsQuoted(std::string_view value)
{
    return value.size() > 1 && (value.front() == '"' || value.front() == '\'') && value.back() == value.front();
}

std::string_view TextOrEmpty(const char* text)
{
    return text == nullptr ? std::string_view() : text;
}

/// A default loses the spaces at its end, but never its first character.
std::string_view WithoutSpacesAtEnd(std::string_view text)
{
    while (text.size() > 1 && text.back() == ' ') {
        text.remove_suffix(1);
    }
    return text;
}

constexpr std::size_t kHashSeed = 0xCBF29CE484222325U;
constexpr std::size_t kHashFactor = 0x100000001B3U;
} // namespace

Profile::Profile(std::string bytes, const CodePage& codePage, ProfileDialect dialect)
    : m_codePage(&codePage), m_rules(RulesOf(dialect)), m_text(std::move(bytes))
{
    // Every place is a number of 32 bits, and what reads differently is stored a second time.
    if (m_text.size() > UINT32_MAX / 8) {
        throw std::length_error("a profile of more than 512 MB");
    }
    m_fileBytes = static_cast<uint32_t>(m_text.size());
    ProfileParser(*this).Parse();
}

uint32_t Profile::ReadString(const char* section, const char* key, const char* defaultText,
                             std::span<char> buffer) const
{
    if (buffer.empty()) {
        return 0;
    }
    if (section == nullptr) {
        return AnswerSectionNames(buffer);
    }
    std::string sectionRoom;
    std::string keyRoom;
    std::string defaultRoom;
    const std::string_view sectionName = AsAsked(section, sectionRoom);
    const std::string_view otherwise = AsAsked(TextOrEmpty(defaultText), defaultRoom);
    if (key == nullptr) {
        return AnswerKeys(sectionName, otherwise, buffer);
    }
    const Line* const line = FindLine(Stripped(sectionName), Stripped(AsAsked(key, keyRoom)));
    const bool found = line != nullptr && HasValue(*line);
    return AnswerValue(found ? TextOf(line->value) : WithoutSpacesAtEnd(otherwise), buffer);
}

uint32_t Profile::ReadSection(const char* section, std::span<char> buffer) const
{
    if (section == nullptr) {
        return 0;
    }
    SectionAnswer answer(buffer);
    std::string room;
    if (const auto found = SectionOf(AsAsked(section, room))) {
        for (const Line& line : LinesOf(*found)) {
            if (IsListed(line)) {
                PutLine(line, answer);
            }
        }
    }
    return answer.Finish();
}

void Profile::PutLine(const Line& line, SectionAnswer& answer) const
{
    if (m_rules.sectionLosesBlanksAtEquals || !HasValue(line)) {
        answer.Put(TextOf(line.name));
        if (HasValue(line)) {
            answer.Put("=");
            answer.Put(TextOf(line.value));
        }
    } else {
        const std::string_view whole = WholeText(line);
        answer.Put(whole.substr(0, whole.find('\0')));
    }
    answer.PutTerminator();
}

uint32_t Profile::AnswerSectionNames(std::span<char> buffer) const
{
    StringAnswer answer(buffer, buffer.size() - std::min<std::size_t>(buffer.size(), 2), *m_codePage);
    for (const Section& section : m_sections) {
        if (section.name.size > 0) {
            answer.Put(TextOf(section.name));
            answer.PutTerminator();
        }
    }
    return answer.Finish();
}

uint32_t Profile::AnswerKeys(std::string_view section, std::string_view defaultText, std::span<char> buffer) const
{
    const std::size_t most = buffer.size() - std::min<std::size_t>(buffer.size(), 2);
    const auto found = SectionOf(section);
    const std::span<const Line> lines = found ? LinesOf(*found) : std::span<const Line>();
    const auto isKey = [this](const Line& line) { return HasValue(line) && !IsComment(line); };
    const auto first = std::ranges::find_if(lines, isKey);
    // A list that begins with an empty name, or has no room for a character, looks like no list to the platform.
    if (most == 0 || first == lines.end() || first->name.size == 0) {
        return AnswerValue(defaultText, buffer);
    }
    StringAnswer answer(buffer, most, *m_codePage);
    for (const Line& line : lines) {
        if (isKey(line)) {
            answer.Put(TextOf(line.name));
            answer.PutTerminator();
        }
    }
    return answer.Finish();
}

uint32_t Profile::AnswerValue(std::string_view value, std::span<char> buffer) const
{
    std::size_t mostUnits = buffer.size() - 1;
    if (IsQuoted(value)) {
        value = value.substr(1, value.size() - 2);
        if (m_rules.quoteCostsCharacter) {
            // The text with the closing quote is copied and cut; when the buffer has the size of that text, the last
            // character that was copied is taken for the quote, which was cut off already.
            const std::size_t units = m_codePage->Decode(value).size();
            if (buffer.size() == units + 1) {
                mostUnits = units > 0 ? units - 1 : 0;
            }
        }
    }
    StringAnswer answer(buffer, mostUnits, *m_codePage);
    answer.Put(value);
    return answer.Finish();
}

/// The name or default of a question as the platform widens and compares it.
/// @param room  Holds the text when it differs from `text`.
std::string_view Profile::AsAsked(std::string_view text, std::string& room) const
{
    if (m_codePage->IsSingleByte()) {
        return text;
    }
    m_codePage->Encode(m_codePage->DecodeQuestion(text), room);
    return room;
}

std::string_view Profile::Stripped(std::string_view name) const
{
    const auto strips = [this](char c) {
        return m_rules.stripsTabsOfQuestion ? IsProfileBlank(static_cast<unsigned char>(c)) : c == ' ';
    };
    while (!name.empty() && strips(name.front())) {
        name.remove_prefix(1);
    }
    while (!name.empty() && strips(name.back())) {
        name.remove_suffix(1);
    }
    return name;
}

std::string_view Profile::WholeText(const Line& line) const
{
    return HasValue(line) ? TextOf({line.name.at, line.value.at + line.value.size - line.name.at}) : TextOf(line.name);
}

bool Profile::IsComment(const Line& line) const
{
    return TextOf(line.name).starts_with(';');
}

/// Whether ReadSection answers the line.
bool Profile::IsListed(const Line& line) const
{
    const bool empty = line.name.size == 0 && !HasValue(line);
    return !empty && !IsComment(line);
}

std::span<const Profile::Line> Profile::LinesOf(std::size_t section) const
{
    const std::size_t first = m_sections[section].firstLine;
    const std::size_t next = section + 1 < m_sections.size() ? m_sections[section + 1].firstLine : m_lines.size();
    return std::span<const Line>(m_lines).subspan(first, next - first);
}

std::optional<std::size_t> Profile::FindSection(std::string_view name) const
{
    std::string room;
    return SectionOf(AsAsked(name, room));
}

std::optional<std::size_t> Profile::SectionOf(std::string_view name) const
{
    const uint32_t section = m_sectionSlots[SectionSlot(name)];
    return section == kNone ? std::nullopt : std::optional<std::size_t>(section);
}

const Profile::Line* Profile::FindLine(std::string_view section, std::string_view key) const
{
    const auto found = SectionOf(section);
    if (!found) {
        return nullptr;
    }
    const uint32_t line = m_lineSlots[LineSlot(*found, key)];
    return line == kNone ? nullptr : &m_lines[line];
}

std::optional<Profile::Entry> Profile::FindEntry(std::string_view section, std::string_view key) const
{
    std::string sectionRoom;
    std::string keyRoom;
    const Line* const line = FindLine(Stripped(AsAsked(section, sectionRoom)), Stripped(AsAsked(key, keyRoom)));
    return line == nullptr ? std::nullopt : std::optional(EntryOf(*line));
}

/// Slots for `count` names, at most half of them used. The number of slots is a power of two.
std::vector<uint32_t> Profile::EmptySlots(std::size_t count)
{
    std::vector<uint32_t> slots(std::bit_ceil(count * 2 + 1), kNone);
    return slots;
}

void Profile::AddSectionToIndex(std::size_t section)
{
    uint32_t& slot = m_sectionSlots[SectionSlot(TextOf(m_sections[section].name))];
    slot = std::min(slot, static_cast<uint32_t>(section));
}

bool Profile::AddLineToIndex(std::size_t section, std::size_t line)
{
    uint32_t& slot = m_lineSlots[LineSlot(section, TextOf(m_lines[line].name))];
    const bool isNew = slot == kNone;
    slot = std::min(slot, static_cast<uint32_t>(line));
    return isNew;
}

std::size_t Profile::SectionOfLine(std::size_t line) const
{
    const auto next = std::ranges::upper_bound(m_sections, line, {}, &Section::firstLine);
    return static_cast<std::size_t>(next - m_sections.begin()) - 1;
}

/// @return the slot with the first section of this name, or the empty one for it.
std::size_t Profile::SectionSlot(std::string_view name) const
{
    const std::size_t mask = m_sectionSlots.size() - 1;
    std::size_t slot = HashOf(name, kHashSeed) & mask;
    while (m_sectionSlots[slot] != kNone && !SameName(TextOf(m_sections[m_sectionSlots[slot]].name), name)) {
        slot = (slot + 1) & mask;
    }
    return slot;
}

/// @return the slot with the first line of this name in the section, or the empty one for it.
std::size_t Profile::LineSlot(std::size_t section, std::string_view name) const
{
    const std::span<const Line> lines = LinesOf(section);
    const auto isSame = [&](const Line& line) {
        return &line >= lines.data() && &line < lines.data() + lines.size() && SameName(TextOf(line.name), name);
    };
    const std::size_t mask = m_lineSlots.size() - 1;
    std::size_t slot = HashOf(name, (kHashSeed ^ section) * kHashFactor) & mask;
    while (m_lineSlots[slot] != kNone && !isSame(m_lines[m_lineSlots[slot]])) {
        slot = (slot + 1) & mask;
    }
    return slot;
}

/// FNV-1a over the name with ASCII letters in lower case; the low bits depend on all of it.
std::size_t Profile::HashOf(std::string_view name, std::size_t seed) const
{
    std::size_t hash = seed;
    for (const char c : name) {
        // Bytes beyond ASCII, and bytes that end a pair, may or may not be letters: they are left out.
        const auto byte = static_cast<unsigned char>(c);
        const bool upper = byte >= 'A' && byte <= 'Z';
        hash = (hash ^ (byte < 0x80 ? byte + (upper ? 0x20U : 0U) : 0x80U)) * kHashFactor;
    }
    return hash ^ (hash >> 29);
}

bool Profile::SameName(std::string_view left, std::string_view right) const
{
    if (left.size() != right.size()) {
        return false;
    }
    if (left == right) {
        return true;
    }
    const auto same = [this](char a, char b) {
        if (a == b) {
            return true;
        }
        const bool ascii = static_cast<unsigned char>(a) < 0x80 && static_cast<unsigned char>(b) < 0x80;
        return (ascii || !m_rules.foldsAsciiOnly) && m_codePage->Lower(a) == m_codePage->Lower(b);
    };
    for (std::size_t at = 0; at < left.size();) {
        const std::size_t bytes = m_codePage->CharacterSize(left.substr(at)).bytes;
        // A character of several bytes has no letter case here.
        const bool equal = bytes == 1 ? same(left[at], right[at]) : left.substr(at, bytes) == right.substr(at, bytes);
        if (!equal) {
            return false;
        }
        at += bytes;
    }
    return true;
}

std::string_view Profile::SectionName(std::size_t section) const
{
    return TextOf(m_sections[section].name);
}

ProfilePlace Profile::SectionPlace(std::size_t section) const
{
    return m_sections[section].offset == kNone ? ProfilePlace() : PlaceOf(m_sections[section].offset);
}

std::size_t Profile::EntryCount(std::size_t section) const
{
    return LinesOf(section).size();
}

Profile::Entry Profile::EntryAt(std::size_t section, std::size_t index) const
{
    return EntryOf(LinesOf(section)[index]);
}

bool Profile::IsListed(std::size_t section, std::size_t index) const
{
    return IsListed(LinesOf(section)[index]);
}

std::optional<Profile::Entry> Profile::ListedEntry(std::size_t section, std::size_t line) const
{
    for (const Line& candidate : LinesOf(section)) {
        if (IsListed(candidate) && line-- == 0) {
            return EntryOf(candidate);
        }
    }
    return std::nullopt;
}

Profile::Entry Profile::EntryOf(const Line& line) const
{
    const auto number = static_cast<std::size_t>(&line - m_lines.data());
    const Offsets offsets =
        m_lineOffsets.empty() ? Offsets{.name = line.name.at, .value = line.value.at} : m_lineOffsets[number];
    Entry entry{.name = TextOf(line.name),
                .value = {},
                .text = WholeText(line),
                .namePlace = PlaceOf(offsets.name),
                .valuePlace = {}};
    if (HasValue(line)) {
        entry.value = TextOf(line.value);
        entry.valuePlace = PlaceOf(offsets.value);
    }
    return entry;
}

ProfilePlace Profile::PlaceOf(uint32_t offset) const
{
    // A place after the last character belongs to the last line.
    const auto next = std::ranges::upper_bound(m_lineStarts, offset);
    const auto line = static_cast<std::size_t>(next - m_lineStarts.begin());
    const uint32_t start = *(next - 1);
    std::string_view before = TextOf({start, offset - start});
    std::size_t column = 1;
    if (m_encoding == Encoding::Utf16 || m_encoding == Encoding::Utf16BigEndian) {
        column += before.size() / 2;
    } else if (m_encoding == Encoding::CodePage && m_codePage->IsSingleByte()) {
        column += before.size();
    } else {
        ProfileUnits units;
        while (!before.empty()) {
            before.remove_prefix(m_encoding == Encoding::Utf8 ? DecodeUtf8Character(before, units)
                                                              : m_codePage->DecodeCharacter(before, units));
        }
        column += units.size();
    }
    return {static_cast<uint32_t>(line), static_cast<uint32_t>(column), offset - start + 1};
}
