#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

/// The platform widens a profile to UTF-16 with the system's code page and narrows its answers with it again. A text
/// here is a row of units, one for each UTF-16 unit of the platform, so that cuts fall in the same places; a unit holds
/// the character's code in the code page, and in code page 65001 the UTF-16 unit itself.
using ProfileUnits = std::basic_string<char16_t>;
using ProfileUnitsView = std::basic_string_view<char16_t>;

/// Reads the UTF-8 character at the beginning of `bytes` (at least one byte); an invalid one is U+FFFD, as in
/// Wine.
/// @param utf16  Receives its one or two UTF-16 units at its end.
/// @return number of bytes that it takes.
std::size_t DecodeUtf8Character(std::string_view bytes, ProfileUnits& utf16);

/// @return true for the first byte of a character of two bytes in a code page; false in one that has none.
[[nodiscard]] bool IsLeadByteIn(uint32_t codePage, unsigned char byte);

/// One of the system's 8-bit code pages: 1250, 1251, 1252 (one byte a character), 932, 936, 949, 950 (one or two) and
/// 65001. What is exact and what is approximated:
/// - 8-bit files: exact, pairs included that do not exist or that come back as another pair.
/// - UTF-16 and UTF-8 files in 1250, 1251, 1252, 65001: exact, characters included that are replaced by a similar one.
/// - UTF-16 and UTF-8 files in 932, 936, 949, 950: ASCII is exact; every other character becomes two question marks,
///   because almost all of them take two bytes. Lengths, and so cuts, are right for them; the bytes are not.
/// - Letter case beyond ASCII (compared on Windows only): the letters of 1250, 1251, 1252.
class CodePage
{
public:
    /// @param number  A code page that is not among those above is read like 1252.
    explicit CodePage(uint32_t number);

    [[nodiscard]] uint32_t Number() const { return m_number; }
    /// @return true when each character takes one byte.
    [[nodiscard]] bool IsSingleByte() const { return m_kind == Kind::Single; }

    /// Reads the character at the beginning of `bytes` (at least one byte).
    /// @param units  Receives its one or two units at its end.
    /// @return number of bytes that it takes.
    std::size_t DecodeCharacter(std::string_view bytes, ProfileUnits& units) const;
    [[nodiscard]] ProfileUnits Decode(std::string_view bytes) const;
    /// The same for a name in a question, of which the platform drops half a pair at the end.
    [[nodiscard]] ProfileUnits DecodeQuestion(std::string_view bytes) const;

    /// The unit for a UTF-16 unit of a Unicode file.
    [[nodiscard]] char16_t UnitOfUtf16(char16_t utf16) const;

    /// @return true when a question, which is 8-bit text, can hold this unit. A character that was replaced cannot be
    ///         asked for: the platform compares what was there before.
    [[nodiscard]] bool CanBeAsked(char16_t unit) const;

    /// Appends a text in the code page.
    void Encode(ProfileUnitsView units, std::string& bytes) const;

    /// Size of the character at the beginning of encoded `bytes` (at least one byte).
    struct Size
    {
        std::size_t bytes = 1;
        std::size_t units = 1;
    };
    [[nodiscard]] Size CharacterSize(std::string_view bytes) const;

    /// @return the lower-case form of a letter that takes one byte; any other byte itself.
    [[nodiscard]] char Lower(char byte) const { return m_lower[static_cast<unsigned char>(byte)]; }

private:
    enum class Kind
    {
        Single,
        Double,
        Utf8
    };

    [[nodiscard]] bool IsLeadByte(unsigned char byte) const;
    std::size_t DecodePair(std::string_view bytes, ProfileUnits& units) const;

    uint32_t m_number;
    Kind m_kind = Kind::Single;
    std::array<char, 256> m_lower{};
};
