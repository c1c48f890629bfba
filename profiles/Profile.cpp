#include "Profile.h"

#include <algorithm>
#include <bit>
#include <stdexcept>
#include <utility>

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
/// Indexing a section costs about as much as going through its lines 32 times; it begins at half of that. Most sections
/// are asked for few names, or for one of their first.
constexpr uint64_t kPassesWithoutIndex = 16;
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
    m_encoding = EncodingOf(m_text, m_rules);
    if (IsSingleByte()) {
        const SingleByteText text{m_text};
        ProfileParser parser(*this, text, nullptr);
        m_sections = parser.FindSections();
        m_isReadAlike = parser.IsReadAlike();
        m_lines = std::make_unique<Lines[]>(m_sections.size());
    } else {
        ReadDecoded();
    }
    IndexSections();
}

/// What reads differently in the code page is added to the text, so everything is read before anybody can ask.
void Profile::ReadDecoded()
{
    const DecodedText text = DecodeProfile(m_text, m_encoding, *m_codePage);
    ProfileParser parser(*this, text, &m_text);
    m_sections = parser.FindSections();
    m_isReadAlike = parser.IsReadAlike();
    m_lines = std::make_unique<Lines[]>(m_sections.size());
    for (std::size_t section = 0; section < m_sections.size(); ++section) {
        std::call_once(m_lines[section].read, [&] { parser.ReadLines(m_sections[section], m_lines[section]); });
    }
    std::call_once(m_lineStartsFound, [&] { m_lineStarts = parser.FindLineStarts(); });
    m_text.shrink_to_fit();
}

bool Profile::IsSingleByte() const
{
    return m_encoding == ProfileEncoding::CodePage && m_codePage->IsSingleByte();
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
    const Line* const line = FindLine(Stripped(sectionName), Stripped(AsAsked(key, keyRoom))).line;
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
    Lines& lines = m_lines[section];
    std::call_once(lines.read, [&] {
        const SingleByteText text{std::string_view(m_text)};
        ProfileParser(*this, text, nullptr).ReadLines(m_sections[section], lines);
    });
    return lines.lines;
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

Profile::Place Profile::FindLine(std::string_view section, std::string_view key) const
{
    const auto found = SectionOf(section);
    if (!found) {
        return {};
    }
    const std::span<const Line> all = LinesOf(*found);
    Lines& lines = m_lines[*found];
    if (lines.passed.load(std::memory_order_relaxed) < kPassesWithoutIndex * all.size()) {
        std::size_t line = 0;
        while (line < all.size() && !(CanBeAsked(lines, line) && SameName(TextOf(all[line].name), key))) {
            ++line;
        }
        lines.passed.fetch_add(line + 1, std::memory_order_relaxed);
        return {.section = *found, .line = line == all.size() ? nullptr : &all[line]};
    }
    std::call_once(lines.indexed, [&] { IndexLines(lines); });
    const uint32_t line = lines.slots[LineSlot(lines, key)];
    return {.section = *found, .line = line == kNone ? nullptr : &all[line]};
}

std::optional<Profile::Entry> Profile::FindEntry(std::string_view section, std::string_view key) const
{
    std::string sectionRoom;
    std::string keyRoom;
    const Place found = FindLine(Stripped(AsAsked(section, sectionRoom)), Stripped(AsAsked(key, keyRoom)));
    return found.line == nullptr ? std::nullopt : std::optional(EntryOf(found.section, *found.line));
}

/// Slots for `count` names, at most half of them used. The number of slots is a power of two.
std::vector<uint32_t> Profile::EmptySlots(std::size_t count)
{
    std::vector<uint32_t> slots(std::bit_ceil(count * 2 + 1), kNone);
    return slots;
}

void Profile::IndexSections()
{
    m_sectionSlots = EmptySlots(m_sections.size());
    for (uint32_t section = 0; section < m_sections.size(); ++section) {
        if (m_sections[section].canBeAsked) {
            uint32_t& slot = m_sectionSlots[SectionSlot(TextOf(m_sections[section].name))];
            slot = std::min(slot, section);
        }
    }
}

/// The table grows with the names: most lines of a large section may be comments that all have the same one.
void Profile::IndexLines(Lines& lines) const
{
    lines.slots = EmptySlots(0);
    std::size_t names = 0;
    for (uint32_t line = 0; line < lines.lines.size(); ++line) {
        if (!CanBeAsked(lines, line)) {
            continue;
        }
        uint32_t& slot = lines.slots[LineSlot(lines, TextOf(lines.lines[line].name))];
        if (slot != kNone) {
            continue;
        }
        slot = line;
        ++names;
        if (names * 2 > lines.slots.size()) {
            const std::vector<uint32_t> full = std::exchange(lines.slots, EmptySlots(names));
            for (const uint32_t first : full) {
                if (first != kNone) {
                    lines.slots[LineSlot(lines, TextOf(lines.lines[first].name))] = first;
                }
            }
        }
    }
}

/// @return the slot with the first section of this name, or the empty one for it.
std::size_t Profile::SectionSlot(std::string_view name) const
{
    const std::size_t mask = m_sectionSlots.size() - 1;
    std::size_t slot = HashOf(name) & mask;
    while (m_sectionSlots[slot] != kNone && !SameName(TextOf(m_sections[m_sectionSlots[slot]].name), name)) {
        slot = (slot + 1) & mask;
    }
    return slot;
}

/// @return the slot with the first line of this name, or the empty one for it.
std::size_t Profile::LineSlot(const Lines& lines, std::string_view name) const
{
    const std::size_t mask = lines.slots.size() - 1;
    std::size_t slot = HashOf(name) & mask;
    while (lines.slots[slot] != kNone && !SameName(TextOf(lines.lines[lines.slots[slot]].name), name)) {
        slot = (slot + 1) & mask;
    }
    return slot;
}

/// FNV-1a over the name in lower case, as far as SameName ignores the case; the low bits depend on all of it.
std::size_t Profile::HashOf(std::string_view name) const
{
    std::size_t hash = kHashSeed;
    const auto add = [&hash](char c) { hash = (hash ^ static_cast<unsigned char>(c)) * kHashFactor; };
    for (std::size_t at = 0; at < name.size();) {
        const char c = name[at];
        if (static_cast<unsigned char>(c) < 0x80) {
            add(c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c);
            ++at;
            continue;
        }
        const std::size_t bytes = m_codePage->CharacterSize(name.substr(at)).bytes;
        if (bytes == 1) {
            add(m_rules.foldsAsciiOnly ? c : m_codePage->Lower(c));
        } else {
            std::ranges::for_each(name.substr(at, bytes), add);
        }
        at += bytes;
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
    return EntryOf(section, LinesOf(section)[index]);
}

bool Profile::IsListed(std::size_t section, std::size_t index) const
{
    return IsListed(LinesOf(section)[index]);
}

std::optional<Profile::Entry> Profile::ListedEntry(std::size_t section, std::size_t line) const
{
    for (const Line& candidate : LinesOf(section)) {
        if (IsListed(candidate) && line-- == 0) {
            return EntryOf(section, candidate);
        }
    }
    return std::nullopt;
}

Profile::Entry Profile::EntryOf(std::size_t section, const Line& line) const
{
    const Lines& lines = m_lines[section];
    const auto number = static_cast<std::size_t>(&line - lines.lines.data());
    const DecodedLine offsets = lines.decoded.empty()
                                    ? DecodedLine{.nameOffset = line.name.at, .valueOffset = line.value.at}
                                    : lines.decoded[number];
    Entry entry{.name = TextOf(line.name),
                .value = {},
                .text = WholeText(line),
                .namePlace = PlaceOf(offsets.nameOffset),
                .valuePlace = {}};
    if (HasValue(line)) {
        entry.value = TextOf(line.value);
        entry.valuePlace = PlaceOf(offsets.valueOffset);
    }
    return entry;
}

ProfilePlace Profile::PlaceOf(uint32_t offset) const
{
    std::call_once(m_lineStartsFound, [this] {
        const SingleByteText text{std::string_view(m_text)};
        m_lineStarts = ProfileParser(*this, text, nullptr).FindLineStarts();
    });
    // A place after the last character belongs to the last line.
    const auto next = std::ranges::upper_bound(m_lineStarts, offset);
    const auto line = static_cast<std::size_t>(next - m_lineStarts.begin());
    const uint32_t start = *(next - 1);
    std::string_view before = TextOf({start, offset - start});
    std::size_t column = 1;
    if (m_encoding == ProfileEncoding::Utf16 || m_encoding == ProfileEncoding::Utf16BigEndian) {
        column += before.size() / 2;
    } else if (IsSingleByte()) {
        column += before.size();
    } else {
        ProfileUnits units;
        while (!before.empty()) {
            before.remove_prefix(m_encoding == ProfileEncoding::Utf8 ? DecodeUtf8Character(before, units)
                                                                     : m_codePage->DecodeCharacter(before, units));
        }
        column += units.size();
    }
    return {static_cast<uint32_t>(line), static_cast<uint32_t>(column), offset - start + 1};
}
