#include "Printable.h"

#include <array>
#include <cstddef>
#include <cstdio>

#include "StoredText.h"

namespace {
constexpr std::size_t kMostShownBytes = 200;

void AppendEscape(std::string& text, unsigned char byte)
{
    std::array<char, 5> escape{};
    static_cast<void>(std::snprintf(escape.data(), escape.size(), "\\x%02X", byte));
    text += escape.data();
}

/// @return the length of the UTF-8 character at the front of the text, or 0 when none begins there.
std::size_t CharacterLength(std::string_view text)
{
    const auto first = static_cast<unsigned char>(text.front());
    const std::size_t length = first < 0x80                     ? 1
                               : first >= 0xC2 && first <= 0xDF ? 2
                               : first >= 0xE0 && first <= 0xEF ? 3
                               : first >= 0xF0 && first <= 0xF4 ? 4
                                                                : 0;
    if (length == 0 || length > text.size()) {
        return 0;
    }
    return ToUtf8(FromUtf8(text.substr(0, length))) == text.substr(0, length) ? length : 0;
}

/// The control characters of ASCII and of Latin-1, the line separators, and what turns the direction of writing.
bool IsControl(std::string_view character)
{
    if (character.size() == 1) {
        const auto byte = static_cast<unsigned char>(character.front());
        return byte < 0x20 || byte == 0x7F;
    }
    const std::u16string units = FromUtf8(character);
    const char16_t unit = units.front();
    return unit < 0xA0 || (unit >= 0x200B && unit <= 0x200F) || (unit >= 0x2028 && unit <= 0x202E) ||
           (unit >= 0x2066 && unit <= 0x2069) || unit == 0xFEFF;
}
} // namespace

std::string Printable(std::string_view text)
{
    std::string printable;
    while (!text.empty()) {
        if (printable.size() > kMostShownBytes) {
            return printable + "...";
        }
        const std::size_t length = CharacterLength(text);
        if (length == 0) {
            AppendEscape(printable, static_cast<unsigned char>(text.front()));
            text.remove_prefix(1);
            continue;
        }
        const std::string_view character = text.substr(0, length);
        if (IsControl(character)) {
            for (const char byte : character) {
                AppendEscape(printable, static_cast<unsigned char>(byte));
            }
        } else {
            printable += character;
        }
        text.remove_prefix(length);
    }
    return printable;
}

std::string Printable(std::u16string_view text)
{
    return Printable(ToUtf8(text.substr(0, kMostShownBytes + 1)));
}
