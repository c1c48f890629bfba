#include "ExportLines.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace {
constexpr std::string_view kMarkUtf16{"\xFF\xFE", 2};
constexpr std::string_view kMarkUtf16Swapped{"\xFE\xFF", 2};
constexpr std::string_view kMarkUtf8{"\xEF\xBB\xBF", 3};
// What the first line of an export begins with, in 8-bit form and in UTF-16.
constexpr std::array kEightBitHeaders = std::to_array<std::string_view>({"REGEDIT4", "Windows "});
constexpr std::string_view kWideHeader{"W\0i\0n\0d\0", 8};
// Enough to recognise a mark or a header at the beginning of a line.
constexpr std::size_t kLookAhead = 8;
// A text of 1 MiB in UTF-16 takes 2 MiB; lines of bytes are short.
constexpr std::size_t kMostLineBytes = std::size_t{4} << 20;
} // namespace

char16_t ExportLine::First() const
{
    if (bytes.empty()) {
        return 0;
    }
    if (text == ExportText::Utf16) {
        return bytes.size() < 2 ? char16_t{0}
                                : static_cast<char16_t>(static_cast<unsigned char>(bytes[0]) |
                                                        static_cast<unsigned char>(bytes[1]) << 8);
    }
    return static_cast<unsigned char>(bytes.front());
}

bool ExportLine::GoesOn() const
{
    return bytes.ends_with(text == ExportText::Utf16 ? std::string_view("\\\0", 2) : std::string_view("\\"));
}

void ExportLine::Read(std::u16string& read) const
{
    if (text == ExportText::Utf16) {
        ReadUnits(bytes, read);
    } else if (text == ExportText::Utf8) {
        read = FromUtf8(bytes);
    } else {
        read.resize(bytes.size());
        std::ranges::transform(bytes, read.begin(), [](char byte) { return static_cast<unsigned char>(byte); });
    }
}

/// Recognises the form of the text at the beginning of a line.
/// @return the length of the mark.
std::size_t ExportLines::FollowMark(std::string_view bytes)
{
    if (bytes.starts_with(kMarkUtf8)) {
        m_text = ExportText::Utf8;
        return kMarkUtf8.size();
    }
    if (bytes.starts_with(kMarkUtf16)) {
        m_text = ExportText::Utf16;
        return kMarkUtf16.size();
    }
    if (bytes.starts_with(kMarkUtf16Swapped)) {
        m_text = ExportText::Utf16Swapped;
        return kMarkUtf16Swapped.size();
    }
    if (IsWide()) {
        if (std::ranges::any_of(kEightBitHeaders,
                                [bytes](std::string_view header) { return bytes.starts_with(header); })) {
            m_text = ExportText::EightBit;
        }
    } else if (bytes.starts_with(kWideHeader)) {
        m_text = ExportText::Utf16;
    } else if (m_text == ExportText::Unknown) {
        m_text = bytes.size() > 1 && bytes[1] == '\0' ? ExportText::Utf16 : ExportText::EightBit;
    }
    return 0;
}

/// Looks for the end of the line that begins at the front of `bytes`.
/// @param from  Where the search begins: there is no end before it.
bool ExportLines::FindEnd(std::string_view bytes, std::size_t from, LineEnd& end) const
{
    for (std::size_t at = from; at < bytes.size(); ++at) {
        const void* const found = std::memchr(bytes.data() + at, '\n', bytes.size() - at);
        if (found == nullptr) {
            return false;
        }
        at = static_cast<std::size_t>(static_cast<const char*>(found) - bytes.data());
        if (!IsWide()) {
            end = {.length = at, .next = at + 1, .isShifted = false};
            return true;
        }
        if (at + 1 == bytes.size() || bytes[at + 1] != '\0') {
            continue;
        }
        if (at % 2 == 0) {
            end = {.length = at, .next = at + 2, .isShifted = false};
            return true;
        }
        // An end of line that lies across two characters: a byte was lost.
        if (at > 2 && bytes[at - 2] == '\r' && bytes[at - 1] == '\0') {
            end = {.length = at, .next = at + 2, .isShifted = true};
            return true;
        }
    }
    return false;
}

void ExportLines::Emit(std::string_view bytes, bool isLast, bool isShifted)
{
    ++m_number;
    if (m_skipsRest) {
        m_skipsRest = false;
        return;
    }
    const std::size_t width = IsWide() ? 2 : 1;
    const bool isCut = bytes.size() > kMostLineBytes;
    bytes = bytes.substr(0, kMostLineBytes);
    if (width == 1 ? bytes.ends_with('\r') : bytes.ends_with(std::string_view("\r\0", 2))) {
        bytes.remove_suffix(width);
    }
    m_sink(
        {.bytes = bytes, .text = m_text, .number = m_number, .isLast = isLast, .isCut = isCut, .isShifted = isShifted});
}

/// Passes on the complete lines at the front of `bytes`.
/// @return how many bytes they take.
std::size_t ExportLines::TakeLines(std::string_view bytes, bool fileEnds)
{
    std::size_t taken = 0;
    for (;;) {
        const std::string_view line = bytes.substr(taken);
        if (line.size() < kLookAhead && !fileEnds) {
            return taken;
        }
        if (line.empty()) {
            return taken;
        }
        // A line has one mark, in whatever blocks it comes.
        const std::size_t mark = m_isInLine ? 0 : FollowMark(line);
        LineEnd end;
        // Of a wide line the last bytes are searched again: an end may lie across the blocks.
        if (!FindEnd(line.substr(mark), m_searched, end)) {
            m_isInLine = true;
            return taken + mark;
        }
        m_isInLine = false;
        m_searched = 0;
        Emit(line.substr(mark, end.length), false, end.isShifted);
        taken += mark + end.next;
    }
}

void ExportLines::Feed(std::string_view bytes)
{
    if (m_rest.empty()) {
        const std::size_t taken = TakeLines(bytes, false);
        m_rest.assign(bytes.substr(taken));
    } else {
        m_rest.append(bytes);
        m_rest.erase(0, TakeLines(m_rest, false));
    }
    m_searched = m_rest.size() < kLookAhead ? 0 : (m_rest.size() - 4) & ~std::size_t{1};
    if (m_rest.size() > kMostLineBytes) {
        const std::size_t number = m_number;
        if (!m_skipsRest) {
            Emit(m_rest, false, false);
        }
        m_number = number;
        m_skipsRest = true;
        // What is left keeps the place of the line's bytes, even or odd.
        m_rest.erase(0, (m_rest.size() - 4) & ~std::size_t{1});
        m_searched = 0;
    }
}

void ExportLines::Finish()
{
    m_searched = 0;
    m_rest.erase(0, TakeLines(m_rest, true));
    if (m_rest.empty()) {
        return;
    }
    m_endsInsideCharacter = IsWide() && m_rest.size() % 2 != 0;
    Emit(m_rest, true, false);
    m_rest.clear();
}
