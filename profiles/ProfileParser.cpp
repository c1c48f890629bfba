#include "ProfileParser.h"

#include <algorithm>
#include <string_view>

namespace {
constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";
constexpr std::string_view kUtf16Mark = "\xFF\xFE";
constexpr std::string_view kBigEndianMark = "\xFE\xFF";

bool EndsLine(char16_t unit)
{
    return unit == u'\r' || unit == u'\n';
}
} // namespace

void ProfileParser::Parse()
{
    FindEncoding();
    DecodeFile();
    m_profile.m_sections.emplace_back();
    m_sectionsAsked.push_back(m_profile.m_rules.linesBeforeFirstSection);
    const auto lines = static_cast<std::size_t>(std::ranges::count(m_units, u'\n')) + 1;
    m_profile.m_lineStarts.reserve(lines);
    m_profile.m_lines.reserve(lines);
    std::size_t begin = 0;
    while (begin < m_units.size()) {
        m_profile.m_lineStarts.push_back(OffsetOf(begin));
        std::size_t end = begin;
        while (end < m_units.size() && !EndsLine(m_units[end])) {
            ++end;
        }
        ReadLine({begin, end});
        const bool pair = end + 1 < m_units.size() && m_units[end] == u'\r' && m_units[end + 1] == u'\n';
        begin = end + (pair ? 2 : 1);
    }
    BuildIndex();
    m_profile.m_text.shrink_to_fit();
    m_profile.m_lines.shrink_to_fit();
    m_profile.m_lineOffsets.shrink_to_fit();
    m_profile.m_sections.shrink_to_fit();
    m_profile.m_lineStarts.shrink_to_fit();
}

void ProfileParser::FindEncoding()
{
    using Encoding = Profile::Encoding;
    const std::string_view file = m_profile.m_text;
    m_profile.m_isReadAlike = !file.starts_with(kUtf8Mark) && !file.starts_with(kBigEndianMark);
    if (file.starts_with(kUtf16Mark)) {
        m_profile.m_encoding = Encoding::Utf16;
    } else if (m_profile.m_rules.readsBigEndian && file.starts_with(kBigEndianMark)) {
        m_profile.m_encoding = Encoding::Utf16BigEndian;
    } else if (m_profile.m_rules.readsUtf8Mark && file.starts_with(kUtf8Mark)) {
        m_profile.m_encoding = Encoding::Utf8;
    }
}

void ProfileParser::DecodeFile()
{
    using Encoding = Profile::Encoding;
    m_units.reserve(m_profile.m_text.size());
    if (!IsItsOwnText()) {
        m_offsets.reserve(m_profile.m_text.size() + 1);
    }
    const bool utf8 = m_profile.m_encoding == Encoding::Utf8;
    if (!utf8 && m_profile.m_encoding != Encoding::CodePage) {
        DecodeUtf16();
        return;
    }
    const std::string_view file = m_profile.m_text;
    if (IsItsOwnText()) {
        m_units.resize(file.size());
        std::ranges::transform(file, m_units.begin(), [](char byte) { return static_cast<unsigned char>(byte); });
        return;
    }
    std::size_t at = utf8 ? kUtf8Mark.size() : 0;
    while (at < file.size()) {
        const std::size_t before = m_units.size();
        const std::string_view rest = file.substr(at);
        const std::size_t bytes =
            utf8 ? DecodeUtf8Character(rest, m_units) : m_profile.m_codePage->DecodeCharacter(rest, m_units);
        for (std::size_t unit = before; unit < m_units.size(); ++unit) {
            if (utf8) {
                m_units[unit] = m_profile.m_codePage->UnitOfUtf16(m_units[unit]);
            }
            m_offsets.push_back(static_cast<uint32_t>(at));
        }
        at += bytes;
    }
    m_offsets.push_back(static_cast<uint32_t>(at));
}

void ProfileParser::DecodeUtf16()
{
    const std::string_view file = m_profile.m_text;
    const bool bigEndian = m_profile.m_encoding == Profile::Encoding::Utf16BigEndian;
    std::size_t at = kUtf16Mark.size();
    for (; at < file.size(); at += 2) {
        const unsigned first = static_cast<unsigned char>(file[at]);
        // The platform reads one byte beyond a file of odd size. Here that byte is a NUL.
        const unsigned second = at + 1 < file.size() ? static_cast<unsigned char>(file[at + 1]) : 0;
        const unsigned utf16 = bigEndian ? first * 256 + second : second * 256 + first;
        m_units.push_back(m_profile.m_codePage->UnitOfUtf16(static_cast<char16_t>(utf16)));
        m_offsets.push_back(static_cast<uint32_t>(at));
    }
    m_offsets.push_back(static_cast<uint32_t>(std::min(at, file.size())));
}

void ProfileParser::ReadLine(Range line)
{
    line = Trimmed(line);
    if (line.first < line.last && !ReadSectionName(line)) {
        ReadEntry(line);
    }
}

bool ProfileParser::ReadSectionName(Range line)
{
    if (m_units[line.first] != u'[') {
        return false;
    }
    const DialectRules& rules = m_profile.m_rules;
    Range name{line.first + 1, line.last};
    const auto text = UnitsOf(name);
    const std::size_t firstBracket = text.find(u']');
    const std::size_t lastBracket = text.rfind(u']');
    const std::size_t bracket = rules.nameEndsAtLastBracket ? lastBracket : firstBracket;
    if (firstBracket != lastBracket || bracket == ProfileUnitsView::npos) {
        m_profile.m_isReadAlike = false;
    }
    if (bracket != ProfileUnitsView::npos) {
        name.last = name.first + bracket;
    } else if (!rules.unclosedNameBeginsSection) {
        return false;
    }
    name = UpToNul(Trimmed(name));
    Profile::Section section;
    section.offset = OffsetOf(name.first);
    section.firstLine = static_cast<uint32_t>(m_profile.m_lines.size());
    section.name = Store(name);
    m_profile.m_sections.push_back(section);
    m_sectionsAsked.push_back(CanBeAsked(name));
    m_afterNameless = false;
    return true;
}

void ProfileParser::ReadEntry(Range line)
{
    const std::size_t equals = Find(line, u'=');
    const Range whole = Trimmed({line.first, equals});
    const Range name = UpToNul(whole);
    // Of several lines without a name that follow each other only the first counts.
    const bool counts = whole.first != whole.last || !m_afterNameless;
    if (!counts) {
        return;
    }
    m_afterNameless = name.first == name.last;
    Profile::Line entry;
    Profile::Offsets offsets{.name = OffsetOf(name.first)};
    entry.value.at = Profile::kNone;
    if (equals == line.last) {
        entry.name = Store(name);
    } else {
        const Range value = UpToNul(Trimmed({equals + 1, line.last}));
        offsets.value = OffsetOf(value.first);
        // The parts are stored as one text, so that the line can be shown as it is.
        const bool asIs = IsStoredAsIs({line.first, value.last});
        const auto store = [this, asIs](Range part) { return asIs ? InFile(part) : Append(part); };
        entry.name = store(name);
        store({name.last, value.first});
        entry.value = store(value);
    }
    m_profile.m_lines.push_back(entry);
    if (!IsItsOwnText()) {
        m_profile.m_lineOffsets.push_back(offsets);
    }
    m_linesAsked.push_back(CanBeAsked(name));
}

ProfileParser::Range ProfileParser::Trimmed(Range range) const
{
    while (range.first < range.last && IsProfileBlank(m_units[range.first])) {
        ++range.first;
    }
    while (range.last > range.first && IsProfileBlank(m_units[range.last - 1])) {
        --range.last;
    }
    return range;
}

ProfileParser::Range ProfileParser::UpToNul(Range range) const
{
    return {range.first, Find(range, u'\0')};
}

std::size_t ProfileParser::Find(Range range, char16_t unit) const
{
    return range.first + std::min(UnitsOf(range).find(unit), range.last - range.first);
}

ProfileUnitsView ProfileParser::UnitsOf(Range range) const
{
    return ProfileUnitsView(m_units).substr(range.first, range.last - range.first);
}

/// @return where a unit is in the file.
uint32_t ProfileParser::OffsetOf(std::size_t unit) const
{
    return IsItsOwnText() ? static_cast<uint32_t>(unit) : m_offsets[unit];
}

/// @return true for a file in a code page of single bytes: it holds every text as the code page has it.
bool ProfileParser::IsItsOwnText() const
{
    return m_profile.m_encoding == Profile::Encoding::CodePage && m_profile.m_codePage->IsSingleByte();
}

bool ProfileParser::CanBeAsked(Range range) const
{
    // Such a file holds nothing that a question cannot hold.
    if (IsItsOwnText()) {
        return true;
    }
    return std::ranges::all_of(UnitsOf(range),
                               [this](char16_t unit) { return m_profile.m_codePage->CanBeAsked(unit); });
}

/// @return true when the file holds the text of the range as the code page has it.
bool ProfileParser::IsStoredAsIs(Range range)
{
    if (IsItsOwnText()) {
        return true;
    }
    m_encoded.clear();
    m_profile.m_codePage->Encode(UnitsOf(range), m_encoded);
    return m_profile.TextOf(InFile(range)) == m_encoded;
}

Profile::Text ProfileParser::InFile(Range range) const
{
    const uint32_t first = OffsetOf(range.first);
    return {first, OffsetOf(range.last) - first};
}

Profile::Text ProfileParser::Store(Range range)
{
    return IsStoredAsIs(range) ? InFile(range) : Append(range);
}

Profile::Text ProfileParser::Append(Range range)
{
    const std::size_t at = m_profile.m_text.size();
    m_profile.m_codePage->Encode(UnitsOf(range), m_profile.m_text);
    return {static_cast<uint32_t>(at), static_cast<uint32_t>(m_profile.m_text.size() - at)};
}

void ProfileParser::BuildIndex()
{
    m_profile.m_sectionSlots = Profile::EmptySlots(m_profile.m_sections.size());
    for (std::size_t section = 0; section < m_profile.m_sections.size(); ++section) {
        if (m_sectionsAsked[section]) {
            m_profile.AddSectionToIndex(section);
        }
    }
    std::size_t names = 0;
    m_profile.m_lineSlots = Profile::EmptySlots(names);
    for (std::size_t section = 0; section < m_profile.m_sections.size(); ++section) {
        const std::size_t first = m_profile.m_sections[section].firstLine;
        for (std::size_t line = first; line < first + m_profile.LinesOf(section).size(); ++line) {
            if (m_linesAsked[line] && m_profile.AddLineToIndex(section, line)) {
                GrowLineIndex(++names);
            }
        }
    }
}

/// Many lines, such as comments, can have one name: the index has the size that its names need.
void ProfileParser::GrowLineIndex(std::size_t names)
{
    if (names * 2 < m_profile.m_lineSlots.size()) {
        return;
    }
    std::vector<uint32_t> slots = Profile::EmptySlots(names * 2);
    slots.swap(m_profile.m_lineSlots);
    for (const uint32_t line : slots) {
        if (line != Profile::kNone) {
            m_profile.AddLineToIndex(m_profile.SectionOfLine(line), line);
        }
    }
}
