#include "HtmlWriter.h"

#include <array>
#include <cstdio>

#include "Utf8.h"

namespace {
/// Marks beyond those that steer a terminal: a page must show them too, or two names could look alike.
bool IsInvisible(char32_t character)
{
    constexpr char32_t kArabicLetterMark = 0x61C;
    constexpr char32_t kFirstTag = 0xE0000;
    constexpr char32_t kLastTag = 0xE0FFF;
    const bool isNoCharacter = (character & 0xFFFEU) == 0xFFFEU || (character >= 0xFDD0 && character <= 0xFDEF);
    return SteersTerminal(character) || character == kArabicLetterMark || isNoCharacter ||
           (character >= kFirstTag && character <= kLastTag);
}

void AppendEscape(std::string& out, const char* form, unsigned value)
{
    std::array<char, 16> escape{};
    static_cast<void>(std::snprintf(escape.data(), escape.size(), form, value));
    out += escape.data();
}

std::string_view ReferenceFor(char32_t character)
{
    switch (character) {
        case '&':
            return "&amp;";
        case '<':
            return "&lt;";
        case '>':
            return "&gt;";
        case '"':
            return "&quot;";
        case '\'':
            return "&#39;";
        default:
            return {};
    }
}
} // namespace

std::string HtmlText(std::string_view text)
{
    std::string html;
    html.reserve(text.size());
    while (!text.empty()) {
        const Utf8Character character = FirstCharacter(text);
        if (character.bytes == 0) {
            AppendEscape(html, "\\x%02X", static_cast<unsigned char>(text.front()));
            text.remove_prefix(1);
            continue;
        }
        const std::string_view reference = ReferenceFor(character.value);
        if (!reference.empty()) {
            html += reference;
        } else if (IsInvisible(character.value)) {
            AppendEscape(html, character.value < 0x80 ? "\\x%02X" : "\\u%04X", static_cast<unsigned>(character.value));
        } else {
            html += text.substr(0, character.bytes);
        }
        text.remove_prefix(character.bytes);
    }
    return html;
}

HtmlWriter& HtmlWriter::Number(std::uint64_t number)
{
    m_out += std::to_string(number);
    return *this;
}

HtmlWriter& HtmlWriter::Attribute(const Markup& name, std::string_view value)
{
    m_out += ' ';
    m_out += name.Text();
    m_out += "=\"";
    m_out += HtmlText(value);
    m_out += '"';
    return *this;
}

std::string Grouped(std::uint64_t number)
{
    constexpr std::size_t kDigits = 3;
    const std::string digits = std::to_string(number);
    std::string text;
    for (std::size_t at = 0; at < digits.size(); ++at) {
        if (at != 0 && (digits.size() - at) % kDigits == 0) {
            text += ',';
        }
        text += digits[at];
    }
    return text;
}

std::string CountOf(std::uint64_t number, std::string_view noun)
{
    return Grouped(number) + " " + std::string(noun) + (number == 1 ? "" : "s");
}
