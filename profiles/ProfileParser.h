#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Profile.h"

/// @return true for what the platform strips around names and values: the control blanks, spaces, and the end mark
///         of DOS.
[[nodiscard]] constexpr bool IsProfileBlank(char16_t unit)
{
    return (unit >= 0x09 && unit <= 0x0D) || unit == 0x20 || unit == 0x1A;
}

/// The text of a file in a code page of single bytes: the bytes themselves.
struct SingleByteText
{
    std::string_view units;

    [[nodiscard]] static uint32_t OffsetOf(std::size_t unit) { return static_cast<uint32_t>(unit); }
};

/// The text of any other file.
struct DecodedText
{
    ProfileUnits units;
    std::vector<uint32_t> offsets; ///< of each unit in the file, and of its end

    [[nodiscard]] uint32_t OffsetOf(std::size_t unit) const { return offsets[unit]; }
};

/// @return how a file is read: its mark decides, as far as the rules know it
[[nodiscard]] ProfileEncoding EncodingOf(std::string_view file, const DialectRules& rules);

[[nodiscard]] DecodedText DecodeProfile(std::string_view file, ProfileEncoding encoding, const CodePage& codePage);

/// Finds the sections of a file, and reads the lines of one section. It changes nothing but `appended`.
/// @tparam Text  SingleByteText or DecodedText
template <class Text>
class ProfileParser
{
public:
    /// @param profile   knows the encoding, the code page and the rules; its m_text begins with the file
    /// @param text      outlives the object
    /// @param appended  the profile's m_text, for lines that read differently in the code page; null for single bytes
    ProfileParser(const Profile& profile, const Text& text, std::string* appended)
        : m_profile(profile), m_text(text), m_units(text.units), m_appended(appended)
    {
    }

    [[nodiscard]] std::vector<Profile::Section> FindSections();
    /// @return true when both dialects find the same sections; known after FindSections
    [[nodiscard]] bool IsReadAlike() const { return m_isReadAlike; }
    void ReadLines(const Profile::Section& section, Profile::Lines& lines);
    [[nodiscard]] std::vector<uint32_t> FindLineStarts() const;

private:
    using Unit = typename decltype(Text::units)::value_type;
    using UnitsView = std::basic_string_view<Unit>;

    /// A piece of the file, in units.
    struct Range
    {
        std::size_t first;
        std::size_t last; ///< the one after it
    };

    [[nodiscard]] std::optional<Range> SectionNameAt(std::size_t bracket);
    void ReadEntry(Range line, Profile::Lines& lines);

    [[nodiscard]] std::optional<std::size_t> LineStart(std::size_t unit) const;
    [[nodiscard]] std::size_t LineEnd(std::size_t unit) const;
    [[nodiscard]] std::size_t NextLine(std::size_t end) const;
    [[nodiscard]] Range Trimmed(Range range) const;
    [[nodiscard]] Range UpToNul(Range range) const;
    [[nodiscard]] std::size_t Find(Range range, char unit) const;
    [[nodiscard]] UnitsView UnitsOf(Range range) const;
    [[nodiscard]] bool CanBeAsked(Range range) const;
    [[nodiscard]] bool IsStoredAsIs(Range range);
    [[nodiscard]] Profile::Text InFile(Range range) const;
    Profile::Text Store(Range range);
    Profile::Text Append(Range range);

    const Profile& m_profile;
    const Text& m_text;
    UnitsView m_units;
    std::string* m_appended;
    std::string m_encoded;
    bool m_isReadAlike = true;
    bool m_hasNuls = true;        ///< in the section that is read
    bool m_afterNameless = false; ///< the line before this one of the section has an empty name
};

extern template class ProfileParser<SingleByteText>;
extern template class ProfileParser<DecodedText>;
