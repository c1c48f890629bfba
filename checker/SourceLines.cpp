#include "SourceLines.h"

#include <algorithm>

#include "FolderListing.h"

namespace {
constexpr std::string_view kUtf16Mark = "\xFF\xFE";

void AppendUtf8(char32_t character, std::string& text)
{
    const auto put = [&text](char32_t byte) { text += static_cast<char>(byte); };
    if (character < 0x80) {
        put(character);
    } else if (character < 0x800) {
        put(0xC0 | character >> 6);
        put(0x80 | (character & 0x3F));
    } else {
        put(0xE0 | character >> 12);
        put(0x80 | (character >> 6 & 0x3F));
        put(0x80 | (character & 0x3F));
    }
}

/// Each unit by itself is enough to recognise a line.
std::string FromUtf16(std::string_view bytes)
{
    std::string text;
    for (std::size_t at = kUtf16Mark.size(); at + 1 < bytes.size(); at += 2) {
        AppendUtf8(static_cast<unsigned char>(bytes[at]) |
                       static_cast<char32_t>(static_cast<unsigned char>(bytes[at + 1])) << 8,
                   text);
    }
    return text;
}

std::string Normalised(std::string_view line)
{
    std::string text;
    for (const char c : line) {
        const bool blank = c == ' ' || c == '\t';
        if (!blank) {
            text += c;
        } else if (!text.empty() && text.back() != ' ') {
            text += ' ';
        }
    }
    if (text.ends_with(' ')) {
        text.pop_back();
    }
    return text;
}
} // namespace

std::string SourceLines::NormalisedLine(const std::filesystem::path& file, std::size_t line)
{
    if (file.empty()) {
        return {};
    }
    if (file != m_file) {
        Read(file);
    }
    while (m_rest && m_lines.size() < line) {
        ReadLine();
    }
    return line == 0 || line > m_lines.size() ? std::string() : Normalised(m_lines[line - 1]);
}

void SourceLines::Read(const std::filesystem::path& file)
{
    m_file = file;
    m_text = ReadFileBytes(file).value_or(std::string());
    if (m_text.starts_with(kUtf16Mark)) {
        m_text = FromUtf16(m_text);
    }
    m_rest = m_text;
    m_lines.clear();
}

/// CR LF, CR and LF each end a line.
void SourceLines::ReadLine()
{
    const auto end = std::ranges::find_if(*m_rest, [](char c) { return c == '\r' || c == '\n'; });
    const auto size = static_cast<std::size_t>(end - m_rest->begin());
    m_lines.push_back(m_rest->substr(0, size));
    if (end == m_rest->end()) {
        m_rest.reset();
    } else {
        m_rest->remove_prefix(size + (m_rest->substr(size).starts_with("\r\n") ? 2 : 1));
    }
}
