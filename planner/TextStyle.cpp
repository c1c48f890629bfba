#include "TextStyle.h"

#include <algorithm>

namespace {
constexpr std::size_t kIndent = 4;

std::string_view CodeOf(Colour colour)
{
    switch (colour) {
        case Colour::None:
            break;
        case Colour::Good:
            return "32";
        case Colour::Bad:
            return "31";
        case Colour::Doubtful:
            return "33";
        case Colour::Strong:
            return "1";
    }
    return {};
}

/// @return the start of `text` that fits, up to a blank if there is one; a word that is too long is not broken.
std::string_view FittingStart(std::string_view text, std::size_t columns)
{
    if (text.size() <= columns) {
        return text;
    }
    std::size_t blank = text.rfind(' ', columns);
    if (blank == std::string_view::npos || blank == 0) {
        blank = text.find(' ', 1);
    }
    return text.substr(0, blank);
}
} // namespace

std::string TextStyle::Paint(Colour colour, std::string_view text) const
{
    const std::string_view code = CodeOf(colour);
    if (!m_coloured || code.empty()) {
        return std::string(text);
    }
    return "\x1b[" + std::string(code) + "m" + std::string(text) + "\x1b[0m";
}

void AppendField(std::string& out, const TextStyle& style, std::string_view label, std::string_view text, Colour colour,
                 std::size_t labelColumns)
{
    std::string start(kIndent, ' ');
    start += label;
    start.resize(std::max(start.size() + 1, kIndent + labelColumns), ' ');
    do {
        const std::string_view line = FittingStart(text, kTextColumns - std::min(kTextColumns / 2, start.size()));
        out += start;
        out += style.Paint(colour, line);
        out += '\n';
        text.remove_prefix(line.size());
        text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
        start.assign(kIndent + labelColumns, ' ');
    } while (!text.empty());
}

std::string Joined(const std::vector<std::string>& texts)
{
    std::string all;
    for (const std::string& text : texts) {
        all += all.empty() ? "" : ", ";
        all += text;
    }
    return all;
}

std::string Counted(std::size_t count, std::string_view noun)
{
    return std::to_string(count) + " " + std::string(noun) + (count == 1 ? "" : "s");
}
