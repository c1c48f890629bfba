#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// Longest section that the platform reads, in bytes.
inline constexpr std::size_t kModelSectionBytes = 32767;

/// What a line of a model section means for a device.
enum class LineVerdict
{
    ListsDevice,
    NoHardwareId, ///< nothing that ends a bus prefix, or nothing after it
    OtherDevice,  ///< its first hardware ID is another one
};

/// One model section of an INF, read once and searched for many devices.
class ModelSection
{
public:
    /// @param count  What the platform returned for the section: 0 when it is missing or empty.
    /// @param lines  What the platform left in the buffer: NUL-terminated lines, ended by an empty one. What lies
    ///               after kModelSectionBytes is ignored.
    ModelSection(uint32_t count, std::span<const char> lines);

    /// @return false when the platform read nothing. Lines may be there all the same.
    [[nodiscard]] bool WasRead() const { return m_wasRead; }
    [[nodiscard]] std::size_t LineCount() const { return m_lines.size(); }

    /// @return what a line means for the device `key`, letter case aside.
    [[nodiscard]] LineVerdict VerdictOn(std::size_t line, std::string_view key) const;
    /// @return the number of the first line that lists the device `key`; no value when there is none.
    [[nodiscard]] std::optional<std::size_t> LineOf(std::string_view key) const;

    /// @return the text before a line's equals sign; empty when there is none.
    [[nodiscard]] std::string_view DescriptionKey(std::size_t line) const { return TextAt(m_lines[line].description); }
    [[nodiscard]] bool HasHardwareId(std::size_t line) const { return m_lines[line].hasId; }
    /// @return a line's first hardware ID, normalised; empty when it has none.
    [[nodiscard]] std::string_view HardwareId(std::size_t line) const { return TextAt(m_lines[line].id); }

private:
    // A kit has many lines: their texts are in one string, and two bytes reach every place of the longest section.
    struct Part
    {
        uint16_t start = 0;
        uint16_t length = 0;
    };
    struct Line
    {
        uint32_t idHash = 0;
        bool hasId = false;
        Part id;
        Part description;
    };

    Part Keep(std::string_view text);
    [[nodiscard]] std::string_view TextAt(Part part) const
    {
        return std::string_view(m_text).substr(part.start, part.length);
    }

    bool m_wasRead = false;
    std::string m_text;
    std::vector<Line> m_lines;
};
