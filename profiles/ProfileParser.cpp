#include "ProfileParser.h"

#include <algorithm>
#include <type_traits>

namespace {
constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";
constexpr std::string_view kUtf16Mark = "\xFF\xFE";
constexpr std::string_view kBigEndianMark = "\xFE\xFF";

template <class Unit>
bool EndsLine(Unit unit)
{
    return unit == Unit{'\r'} || unit == Unit{'\n'};
}

template <class Unit>
bool IsBlank(Unit unit)
{
    return IsProfileBlank(static_cast<std::make_unsigned_t<Unit>>(unit));
}

void DecodeUtf16(std::string_view file, bool bigEndian, const CodePage& codePage, DecodedText& text)
{
    std::size_t at = kUtf16Mark.size();
    for (; at < file.size(); at += 2) {
        const unsigned first = static_cast<unsigned char>(file[at]);
        // The platform reads one byte beyond a file of odd size. Here that byte is a NUL.
        const unsigned second = at + 1 < file.size() ? static_cast<unsigned char>(file[at + 1]) : 0;
        const unsigned utf16 = bigEndian ? first * 256 + second : second * 256 + first;
        text.units.push_back(codePage.UnitOfUtf16(static_cast<char16_t>(utf16)));
        text.offsets.push_back(static_cast<uint32_t>(at));
    }
    text.offsets.push_back(static_cast<uint32_t>(std::min(at, file.size())));
}
} // namespace

DecodedText DecodeProfile(std::string_view file, ProfileEncoding encoding, const CodePage& codePage)
{
    DecodedText text;
    text.units.reserve(file.size());
    text.offsets.reserve(file.size() + 1);
    const bool utf8 = encoding == ProfileEncoding::Utf8;
    if (!utf8 && encoding != ProfileEncoding::CodePage) {
        DecodeUtf16(file, encoding == ProfileEncoding::Utf16BigEndian, codePage, text);
        return text;
    }
    std::size_t at = utf8 ? kUtf8Mark.size() : 0;
    while (at < file.size()) {
        const std::size_t before = text.units.size();
        const std::string_view rest = file.substr(at);
        const std::size_t bytes =
            utf8 ? DecodeUtf8Character(rest, text.units) : codePage.DecodeCharacter(rest, text.units);
        for (std::size_t unit = before; unit < text.units.size(); ++unit) {
            if (utf8) {
                text.units[unit] = codePage.UnitOfUtf16(text.units[unit]);
            }
            text.offsets.push_back(static_cast<uint32_t>(at));
        }
        at += bytes;
    }
    text.offsets.push_back(static_cast<uint32_t>(at));
    return text;
}

ProfileEncoding EncodingOf(std::string_view file, const DialectRules& rules)
{
    if (file.starts_with(kUtf16Mark)) {
        return ProfileEncoding::Utf16;
    }
    if (rules.readsBigEndian && file.starts_with(kBigEndianMark)) {
        return ProfileEncoding::Utf16BigEndian;
    }
    return rules.readsUtf8Mark && file.starts_with(kUtf8Mark) ? ProfileEncoding::Utf8 : ProfileEncoding::CodePage;
}

template <class Text>
std::vector<Profile::Section> ProfileParser<Text>::FindSections()
{
    std::vector<Profile::Section> sections(1);
    sections.front().canBeAsked = m_profile.m_rules.linesBeforeFirstSection;
    const std::string_view file = m_profile.m_text;
    m_isReadAlike = !file.starts_with(kUtf8Mark) && !file.starts_with(kBigEndianMark);
    std::size_t at = m_units.find(Unit{'['});
    while (at != UnitsView::npos) {
        const std::optional<std::size_t> start = LineStart(at);
        const std::optional<Range> name = start ? SectionNameAt(at) : std::nullopt;
        if (name) {
            sections.back().end = *start;
            Profile::Section section;
            section.offset = m_text.OffsetOf(name->first);
            section.name = Store(*name);
            section.canBeAsked = CanBeAsked(*name);
            section.begin = LineEnd(at);
            sections.push_back(section);
        }
        // What follows in the line begins no section.
        at = m_units.find(Unit{'['}, name ? sections.back().begin : at + 1);
    }
    sections.back().end = m_units.size();
    return sections;
}

template <class Text>
std::optional<typename ProfileParser<Text>::Range> ProfileParser<Text>::SectionNameAt(std::size_t bracket)
{
    const DialectRules& rules = m_profile.m_rules;
    Range name{bracket + 1, Trimmed({bracket, LineEnd(bracket)}).last};
    const UnitsView text = UnitsOf(name);
    const std::size_t first = text.find(Unit{']'});
    const std::size_t last = text.rfind(Unit{']'});
    m_isReadAlike = m_isReadAlike && first == last && first != UnitsView::npos;
    const std::size_t end = rules.nameEndsAtLastBracket ? last : first;
    if (end != UnitsView::npos) {
        name.last = name.first + end;
    } else if (!rules.unclosedNameBeginsSection) {
        return std::nullopt;
    }
    return UpToNul(Trimmed(name));
}

template <class Text>
void ProfileParser<Text>::ReadLines(const Profile::Section& section, Profile::Lines& lines)
{
    m_afterNameless = false;
    m_hasNuls = Find({section.begin, section.end}, '\0') != section.end;
    for (std::size_t begin = section.begin; begin < section.end;) {
        const std::size_t end = LineEnd(begin);
        const Range line = Trimmed({begin, end});
        if (line.first < line.last) {
            ReadEntry(line, lines);
        }
        begin = NextLine(end);
    }
    lines.lines.shrink_to_fit();
    lines.decoded.shrink_to_fit();
}

template <class Text>
std::vector<uint32_t> ProfileParser<Text>::FindLineStarts() const
{
    std::vector<uint32_t> starts;
    for (std::size_t begin = 0; begin < m_units.size(); begin = NextLine(LineEnd(begin))) {
        starts.push_back(m_text.OffsetOf(begin));
    }
    starts.shrink_to_fit();
    return starts;
}

template <class Text>
void ProfileParser<Text>::ReadEntry(Range line, Profile::Lines& lines)
{
    const std::size_t equals = Find(line, '=');
    const Range whole = Trimmed({line.first, equals});
    const Range name = UpToNul(whole);
    // Of several lines without a name that follow each other only the first counts.
    const bool counts = whole.first != whole.last || !m_afterNameless;
    if (!counts) {
        return;
    }
    m_afterNameless = name.first == name.last;
    Profile::Line entry;
    Profile::DecodedLine decoded;
    entry.value.at = Profile::kNone;
    if (equals == line.last) {
        entry.name = Store(name);
    } else {
        const Range value = UpToNul(Trimmed({equals + 1, line.last}));
        decoded.valueOffset = m_text.OffsetOf(value.first);
        // The parts are stored as one text, so that the line can be shown as it is.
        const bool asIs = IsStoredAsIs({line.first, value.last});
        const auto store = [this, asIs](Range part) { return asIs ? InFile(part) : Append(part); };
        entry.name = store(name);
        store({name.last, value.first});
        entry.value = store(value);
    }
    lines.lines.push_back(entry);
    if constexpr (std::is_same_v<Text, DecodedText>) {
        decoded.nameOffset = m_text.OffsetOf(name.first);
        decoded.canBeAsked = CanBeAsked(name);
        lines.decoded.push_back(decoded);
    }
}

/// @return where the line of `unit` begins; none unless only blanks come before it
template <class Text>
std::optional<std::size_t> ProfileParser<Text>::LineStart(std::size_t unit) const
{
    while (unit > 0 && !EndsLine(m_units[unit - 1])) {
        --unit;
        if (!IsBlank(m_units[unit])) {
            return std::nullopt;
        }
    }
    return unit;
}

/// @return the place of the character that ends the line of `unit`, or the file's end
template <class Text>
std::size_t ProfileParser<Text>::LineEnd(std::size_t unit) const
{
    const UnitsView rest = m_units.substr(unit);
    return unit + static_cast<std::size_t>(std::ranges::find_if(rest, EndsLine<Unit>) - rest.begin());
}

template <class Text>
std::size_t ProfileParser<Text>::NextLine(std::size_t end) const
{
    const bool pair = end + 1 < m_units.size() && m_units[end] == Unit{'\r'} && m_units[end + 1] == Unit{'\n'};
    return end + (pair ? 2 : 1);
}

template <class Text>
typename ProfileParser<Text>::Range ProfileParser<Text>::Trimmed(Range range) const
{
    while (range.first < range.last && IsBlank(m_units[range.first])) {
        ++range.first;
    }
    while (range.last > range.first && IsBlank(m_units[range.last - 1])) {
        --range.last;
    }
    return range;
}

template <class Text>
typename ProfileParser<Text>::Range ProfileParser<Text>::UpToNul(Range range) const
{
    return m_hasNuls ? Range{range.first, Find(range, '\0')} : range;
}

template <class Text>
std::size_t ProfileParser<Text>::Find(Range range, char unit) const
{
    return range.first + std::min(UnitsOf(range).find(static_cast<Unit>(unit)), range.last - range.first);
}

template <class Text>
typename ProfileParser<Text>::UnitsView ProfileParser<Text>::UnitsOf(Range range) const
{
    return m_units.substr(range.first, range.last - range.first);
}

template <class Text>
bool ProfileParser<Text>::CanBeAsked(Range range) const
{
    if constexpr (std::is_same_v<Text, DecodedText>) {
        return std::ranges::all_of(UnitsOf(range),
                                   [this](char16_t unit) { return m_profile.m_codePage->CanBeAsked(unit); });
    }
    // A file in a code page of single bytes holds nothing that a question cannot hold.
    return true;
}

/// @return true when the file holds the text of the range as the code page has it.
template <class Text>
bool ProfileParser<Text>::IsStoredAsIs(Range range)
{
    if constexpr (std::is_same_v<Text, DecodedText>) {
        m_encoded.clear();
        m_profile.m_codePage->Encode(UnitsOf(range), m_encoded);
        return m_profile.TextOf(InFile(range)) == m_encoded;
    }
    return true;
}

template <class Text>
Profile::Text ProfileParser<Text>::InFile(Range range) const
{
    const uint32_t first = m_text.OffsetOf(range.first);
    return {first, m_text.OffsetOf(range.last) - first};
}

template <class Text>
Profile::Text ProfileParser<Text>::Store(Range range)
{
    return IsStoredAsIs(range) ? InFile(range) : Append(range);
}

template <class Text>
Profile::Text ProfileParser<Text>::Append(Range range)
{
    if constexpr (std::is_same_v<Text, DecodedText>) {
        const std::size_t at = m_appended->size();
        m_profile.m_codePage->Encode(UnitsOf(range), *m_appended);
        return {static_cast<uint32_t>(at), static_cast<uint32_t>(m_appended->size() - at)};
    }
    return InFile(range);
}

template class ProfileParser<SingleByteText>;
template class ProfileParser<DecodedText>;
