#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "Profile.h"

/// @return true for what the platform strips around names and values: the control blanks, spaces, and the end mark
///         of DOS.
[[nodiscard]] constexpr bool IsProfileBlank(char16_t unit)
{
    return (unit >= 0x09 && unit <= 0x0D) || unit == 0x20 || unit == 0x1A;
}

/// Fills a profile whose m_text is the file.
class ProfileParser
{
public:
    explicit ProfileParser(Profile& profile) : m_profile(profile) {}

    void Parse();

private:
    /// A piece of the file, in units.
    struct Range
    {
        std::size_t first;
        std::size_t last; ///< the one after it
    };

    void FindEncoding();
    void DecodeFile();
    void DecodeUtf16();
    void ReadLine(Range line);
    bool ReadSectionName(Range line);
    void ReadEntry(Range line);
    void BuildIndex();
    void GrowLineIndex(std::size_t names);

    [[nodiscard]] Range Trimmed(Range range) const;
    [[nodiscard]] Range UpToNul(Range range) const;
    [[nodiscard]] std::size_t Find(Range range, char16_t unit) const;
    [[nodiscard]] ProfileUnitsView UnitsOf(Range range) const;
    [[nodiscard]] uint32_t OffsetOf(std::size_t unit) const;
    [[nodiscard]] bool IsItsOwnText() const;
    [[nodiscard]] bool CanBeAsked(Range range) const;
    [[nodiscard]] bool IsStoredAsIs(Range range);
    [[nodiscard]] Profile::Text InFile(Range range) const;
    Profile::Text Store(Range range);
    Profile::Text Append(Range range);

    Profile& m_profile;
    ProfileUnits m_units;
    std::vector<uint32_t> m_offsets; ///< of each unit in the file, and of its end; none in a file that is its own text
    std::string m_encoded;
    std::vector<bool> m_sectionsAsked; ///< whether a question can hold the name
    std::vector<bool> m_linesAsked;
    bool m_afterNameless = false; ///< the line before this one of the section has an empty name
};
