#pragma once

#include <cstddef>
#include <deque>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Profile.h"

/// An INF file as the platform's set-up functions read it, which is not how the installer's own search does: sections
/// of one name are merged, lines go on after a backslash, comments and quotation marks are taken away, and %names% are
/// replaced. Belongs to one thread.
class SetupInf
{
public:
    /// Its texts belong to the object, or to the profile.
    struct Line
    {
        std::string_view key;                 ///< before the equals sign; empty without one
        std::vector<std::string_view> fields; ///< between the commas of the rest
        ProfilePlace place;
        std::size_t section = 0; ///< of the profile
        std::size_t entry = 0;   ///< of the profile's section; where the line begins

        [[nodiscard]] std::string_view Field(std::size_t index) const
        {
            return index < fields.size() ? fields[index] : std::string_view();
        }
    };

    /// @param text  Must outlive the object.
    explicit SetupInf(const Profile& text) : m_text(&text) {}
    SetupInf(const SetupInf&) = delete;
    SetupInf& operator=(const SetupInf&) = delete;
    ~SetupInf() = default;

    [[nodiscard]] bool HasSection(std::string_view name) const;
    /// @return the lines of all sections of the name, letter case aside; none when there is no such section.
    [[nodiscard]] const std::vector<Line>& LinesOf(std::string_view section) const;
    /// The same for a section that is asked for once: nothing is kept but texts.
    [[nodiscard]] std::vector<Line> ReadLinesOf(std::string_view section) const;
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
    [[nodiscard]] std::string_view LineFrom(const Profile::Entry& first, std::size_t section, std::size_t& index) const;
    [[nodiscard]] std::string_view Plain(std::string_view part) const;
    [[nodiscard]] std::string Replaced(std::string_view text) const;
    [[nodiscard]] Line Split(std::string_view text) const;
    [[nodiscard]] std::string_view Keep(std::string text) const { return m_texts.emplace_back(std::move(text)); }
    void ReadSectionNames() const;

    const Profile* m_text;
    // Made when they are asked for.
    mutable std::map<std::string, std::vector<std::size_t>, IgnoringCase> m_sections;
    mutable std::map<std::string, std::vector<Line>, IgnoringCase> m_lines;
    mutable std::deque<std::string> m_texts; ///< those that the profile does not hold as they are
};
