#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "Profile.h"

/// An INF file as the platform's set-up functions read it, which is not how the installer's own search does: sections
/// of one name are merged, lines go on after a backslash, comments and quotation marks are taken away, and %names% are
/// replaced. Belongs to one thread.
class SetupInf
{
public:
    struct Line
    {
        std::string key;                 ///< before the equals sign; empty without one
        std::vector<std::string> fields; ///< between the commas of the rest
        ProfilePlace place;
        std::size_t section = 0; ///< of the profile
        std::size_t entry = 0;   ///< of the profile's section; where the line begins

        [[nodiscard]] std::string_view Field(std::size_t index) const
        {
            return index < fields.size() ? std::string_view(fields[index]) : std::string_view();
        }
    };

    /// @param text  Must outlive the object.
    explicit SetupInf(const Profile& text) : m_text(&text) {}

    [[nodiscard]] bool HasSection(std::string_view name) const;
    /// @return the lines of all sections of the name, letter case aside; none when there is no such section.
    [[nodiscard]] const std::vector<Line>& LinesOf(std::string_view section) const;
    /// @return the first line with the key; null when there is none.
    [[nodiscard]] const Line* FindLine(std::string_view section, std::string_view key) const;
    /// @return the first field of that line; empty when there is none.
    [[nodiscard]] std::string_view ValueOf(std::string_view section, std::string_view key) const;

private:
    struct IgnoringCase
    {
        using is_transparent = void;
        bool operator()(std::string_view left, std::string_view right) const;
    };

    [[nodiscard]] std::vector<Line> ReadSection(std::size_t section) const;
    [[nodiscard]] std::string Replaced(std::string_view text) const;
    [[nodiscard]] Line Split(std::string_view text) const;
    void ReadSectionNames() const;

    const Profile* m_text;
    // Made when they are asked for.
    mutable std::map<std::string, std::vector<std::size_t>, IgnoringCase> m_sections;
    mutable std::map<std::string, std::vector<Line>, IgnoringCase> m_lines;
};
