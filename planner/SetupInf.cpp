#include "SetupInf.h"

#include <algorithm>

#include "EqualsIgnoringCase.h"

namespace {
constexpr std::string_view kBlanks = " \t";
constexpr std::string_view kStrings = "Strings";

std::string_view WithoutBlanks(std::string_view text)
{
    const std::size_t first = text.find_first_not_of(kBlanks);
    return first == std::string_view::npos ? std::string_view()
                                           : text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

/// @return the place of the first `character` that is not in quotation marks.
std::size_t FindOutsideQuotes(std::string_view text, char character)
{
    bool quoted = false;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] == '"') {
            quoted = !quoted;
        } else if (text[at] == character && !quoted) {
            return at;
        }
    }
    return std::string_view::npos;
}

/// Quotation marks around and within a text go; a doubled one within quotation marks is one of the text.
std::string WithoutQuotes(std::string_view text)
{
    std::string plain;
    bool quoted = false;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] != '"') {
            plain += text[at];
        } else if (quoted && at + 1 < text.size() && text[at + 1] == '"') {
            plain += text[at++];
        } else {
            quoted = !quoted;
        }
    }
    return plain;
}

/// One line of the profile, put together again.
std::string TextOfEntry(const Profile::Entry& entry)
{
    std::string text(entry.name);
    if (entry.value) {
        text += '=';
        text += *entry.value;
    }
    return std::string(WithoutBlanks(std::string_view(text).substr(0, FindOutsideQuotes(text, ';'))));
}

/// @return true for a line that the next one belongs to.
bool GoesOn(std::string_view text)
{
    return text.ends_with('\\') && std::ranges::count(text, '"') % 2 == 0;
}

char LowerAscii(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}
} // namespace

bool SetupInf::IgnoringCase::operator()(std::string_view left, std::string_view right) const
{
    return std::ranges::lexicographical_compare(left, right,
                                                [](char a, char b) { return LowerAscii(a) < LowerAscii(b); });
}

bool SetupInf::HasSection(std::string_view name) const
{
    ReadSectionNames();
    return m_sections.contains(name);
}

void SetupInf::ReadSectionNames() const
{
    if (!m_sections.empty()) {
        return;
    }
    // The first section of a profile holds the lines before the first bracket.
    for (std::size_t section = 1; section < m_text->SectionCount(); ++section) {
        m_sections[std::string(m_text->SectionName(section))].push_back(section);
    }
}

const std::vector<SetupInf::Line>& SetupInf::LinesOf(std::string_view section) const
{
    if (const auto known = m_lines.find(section); known != m_lines.end()) {
        return known->second;
    }
    ReadSectionNames();
    std::vector<Line> lines;
    if (const auto found = m_sections.find(section); found != m_sections.end()) {
        for (const std::size_t part : found->second) {
            std::ranges::move(ReadSection(part), std::back_inserter(lines));
        }
    }
    return m_lines.try_emplace(std::string(section), std::move(lines)).first->second;
}

const SetupInf::Line* SetupInf::FindLine(std::string_view section, std::string_view key) const
{
    const std::vector<Line>& lines = LinesOf(section);
    const auto found =
        std::ranges::find_if(lines, [key](const Line& line) { return EqualsIgnoringCase(line.key, key); });
    return found == lines.end() ? nullptr : &*found;
}

std::string_view SetupInf::ValueOf(std::string_view section, std::string_view key) const
{
    const Line* const line = FindLine(section, key);
    return line == nullptr ? std::string_view() : line->Field(0);
}

std::vector<SetupInf::Line> SetupInf::ReadSection(std::size_t section) const
{
    std::vector<Line> lines;
    const std::size_t count = m_text->EntryCount(section);
    for (std::size_t index = 0; index < count; ++index) {
        const Profile::Entry first = m_text->EntryAt(section, index);
        std::string text = TextOfEntry(first);
        const std::size_t start = index;
        while (GoesOn(text) && index + 1 < count) {
            text.pop_back();
            text += TextOfEntry(m_text->EntryAt(section, ++index));
        }
        if (text.empty()) {
            continue;
        }
        Line line = Split(text);
        line.place = first.namePlace;
        line.section = section;
        line.entry = start;
        lines.push_back(std::move(line));
    }
    return lines;
}

SetupInf::Line SetupInf::Split(std::string_view text) const
{
    Line line;
    const auto plain = [this](std::string_view part) { return WithoutQuotes(Replaced(WithoutBlanks(part))); };
    if (const std::size_t equals = FindOutsideQuotes(text, '='); equals != std::string_view::npos) {
        line.key = WithoutQuotes(WithoutBlanks(text.substr(0, equals)));
        text.remove_prefix(equals + 1);
    }
    for (;;) {
        const std::size_t comma = FindOutsideQuotes(text, ',');
        line.fields.push_back(plain(text.substr(0, comma)));
        if (comma == std::string_view::npos) {
            return line;
        }
        text.remove_prefix(comma + 1);
    }
}

/// Replaces the %names% that [Strings] has. A text of [Strings] itself holds none.
std::string SetupInf::Replaced(std::string_view text) const
{
    std::string replaced;
    while (!text.empty()) {
        const std::size_t start = text.find('%');
        const std::size_t end = start == std::string_view::npos ? start : text.find('%', start + 1);
        replaced += text.substr(0, end == std::string_view::npos ? text.size() : start);
        if (end == std::string_view::npos) {
            break;
        }
        const std::string_view name = text.substr(start + 1, end - start - 1);
        const auto found = name.empty() ? std::nullopt : m_text->FindEntry(kStrings, name);
        if (found && found->value) {
            const std::string_view value = *found->value;
            replaced += WithoutBlanks(value.substr(0, FindOutsideQuotes(value, ';')));
        } else {
            replaced += name.empty() ? std::string_view("%") : text.substr(start, end - start + 1);
        }
        text.remove_prefix(end + 1);
    }
    return replaced;
}
