#include "SourceLines.h"

#include <string_view>

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

/// CR LF, CR and LF each end a line.
std::vector<std::string> LinesIn(const std::string& bytes)
{
    const std::string text = bytes.starts_with(kUtf16Mark) ? FromUtf16(bytes) : bytes;
    std::vector<std::string> lines(1);
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] == '\r' || text[at] == '\n') {
            at += text[at] == '\r' && at + 1 < text.size() && text[at + 1] == '\n' ? 1 : 0;
            lines.emplace_back();
        } else {
            lines.back() += text[at];
        }
    }
    return lines;
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
    const auto [known, isNew] = m_files.try_emplace(file);
    if (isNew) {
        known->second = LinesIn(ReadFileBytes(file).value_or(std::string()));
    }
    return line == 0 || line > known->second.size() ? std::string() : Normalised(known->second[line - 1]);
}
