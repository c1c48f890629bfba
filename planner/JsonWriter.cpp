#include "JsonWriter.h"

#include <array>
#include <cstdio>

#include "Utf8.h"

namespace {
void AppendEscape(std::string& out, char32_t character)
{
    std::array<char, 8> escape{};
    static_cast<void>(std::snprintf(escape.data(), escape.size(), "\\u%04x", static_cast<unsigned>(character)));
    out += escape.data();
}

constexpr bool IsPlain(char c)
{
    return c >= 0x20 && c < 0x7F && c != '"' && c != '\\';
}
} // namespace

JsonWriter& JsonWriter::Key(std::string_view key)
{
    Separate();
    m_out += '"';
    m_out += key;
    m_out += "\":";
    m_first = true;
    return *this;
}

JsonWriter& JsonWriter::Text(std::string_view text)
{
    Separate();
    m_out += '"';
    while (!text.empty()) {
        std::size_t plain = 0;
        while (plain < text.size() && IsPlain(text[plain])) {
            ++plain;
        }
        m_out += text.substr(0, plain);
        text.remove_prefix(plain);
        if (text.empty()) {
            break;
        }
        const Utf8Character character = FirstCharacter(text);
        if (character.bytes == 0) {
            m_out += "\\ufffd";
            text.remove_prefix(1);
            continue;
        }
        if (character.value == '"' || character.value == '\\') {
            m_out += '\\';
            m_out += text.front();
        } else if (SteersTerminal(character.value)) {
            AppendEscape(m_out, character.value);
        } else {
            m_out += text.substr(0, character.bytes);
        }
        text.remove_prefix(character.bytes);
    }
    m_out += '"';
    return *this;
}

JsonWriter& JsonWriter::Plain(std::string_view json)
{
    Separate();
    m_out += json;
    return *this;
}

JsonWriter& JsonWriter::Open(char bracket)
{
    Separate();
    m_out += bracket;
    m_first = true;
    return *this;
}

JsonWriter& JsonWriter::Close(char bracket)
{
    m_out += bracket;
    m_first = false;
    return *this;
}

void JsonWriter::Separate()
{
    if (!m_first) {
        m_out += ',';
    }
    m_first = false;
}
