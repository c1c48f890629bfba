#include "SetupInf.h"

#include <algorithm>

#include "AsciiCase.h"
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
    const std::size_t quote = text.find('"');
    if (quote == std::string_view::npos) {
        return text.find(character);
    }
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

/// @return a line without its comment and the blanks around it.
std::string_view WithoutComment(std::string_view text)
{
    return WithoutBlanks(text.substr(0, FindOutsideQuotes(text, ';')));
}

/// @return true for an entry whose blanks around the equals sign are those of set-up.
bool HasPlainBlanks(const Profile::Entry& entry)
{
    const std::size_t outside = entry.name.size() + entry.value.value_or(std::string_view()).size();
    return entry.text.substr(entry.name.size(), entry.text.size() - outside).find_first_not_of(" \t=") ==
           std::string_view::npos;
}

/// @return true for a line that the next one belongs to.
bool GoesOn(std::string_view text)
{
    return text.ends_with('\\') && std::ranges::count(text, '"') % 2 == 0;
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
    const auto known = m_lines.find(section);
    return known != m_lines.end() ? known->second
                                  : m_lines.try_emplace(std::string(section), ReadLinesOf(section)).first->second;
}

std::vector<SetupInf::Line> SetupInf::ReadLinesOf(std::string_view section) const
{
    ReadSectionNames();
    std::vector<Line> lines;
    if (const auto found = m_sections.find(section); found != m_sections.end()) {
        for (const std::size_t part : found->second) {
            std::ranges::move(ReadSection(part), std::back_inserter(lines));
        }
    }
    return lines;
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
    lines.reserve(count);
    for (std::size_t index = 0; index < count; ++index) {
        const std::size_t start = index;
        const Profile::Entry first = m_text->EntryAt(section, index);
        const std::string_view text = LineFrom(first, section, index);
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

/// @param first  Entry where the line begins.
/// @param index  Of that entry; becomes that of the line's last one.
/// @return the line, put together.
std::string_view SetupInf::LineFrom(const Profile::Entry& first, std::size_t section, std::size_t& index) const
{
    const auto textOf = [this](const Profile::Entry& entry) {
        return WithoutComment(HasPlainBlanks(entry) ? entry.text
                                                    : Keep(std::string(entry.name) + "=" + std::string(*entry.value)));
    };
    const std::string_view text = textOf(first);
    if (!GoesOn(text)) {
        return text;
    }
    std::string whole(text);
    while (GoesOn(whole) && index + 1 < m_text->EntryCount(section)) {
        whole.pop_back();
        whole += textOf(m_text->EntryAt(section, ++index));
    }
    return Keep(std::move(whole));
}

SetupInf::Line SetupInf::Split(std::string_view text) const
{
    Line line;
    if (const std::size_t equals = FindOutsideQuotes(text, '='); equals != std::string_view::npos) {
        const std::string_view key = WithoutBlanks(text.substr(0, equals));
        line.key = key.find('"') == std::string_view::npos ? key : Keep(WithoutQuotes(key));
        text.remove_prefix(equals + 1);
    }
    // A model line has two.
    line.fields.reserve(2);
    for (;;) {
        const std::size_t comma = FindOutsideQuotes(text, ',');
        line.fields.push_back(Plain(WithoutBlanks(text.substr(0, comma))));
        if (comma == std::string_view::npos) {
            return line;
        }
        text.remove_prefix(comma + 1);
    }
}

/// @return a part of a line without its quotation marks, with what its %names% mean.
std::string_view SetupInf::Plain(std::string_view part) const
{
    return part.find_first_of("%\"") == std::string_view::npos ? part : Keep(WithoutQuotes(Replaced(part)));
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
