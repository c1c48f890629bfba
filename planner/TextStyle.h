#pragma once

#include <string>
#include <string_view>
#include <vector>

/// How text for people is written.

enum class Colour
{
    None,
    Good,
    Bad,
    Doubtful,
    Strong,
};

/// Writes texts with or without colours. Every text from outside goes through Printable before it gets here.
class TextStyle
{
public:
    explicit TextStyle(bool coloured) : m_coloured(coloured) {}

    [[nodiscard]] std::string Paint(Colour colour, std::string_view text) const;

private:
    bool m_coloured;
};

inline constexpr std::size_t kTextColumns = 100;
inline constexpr std::size_t kLabelColumns = 13;

/// Appends "  label      text": the label in a column of its own, long texts broken at blanks with the next lines below
/// the first.
/// @param colour        Of the whole text.
/// @param labelColumns  Width of the label's column.
void AppendField(std::string& out, const TextStyle& style, std::string_view label, std::string_view text,
                 Colour colour = Colour::None, std::size_t labelColumns = kLabelColumns);

/// @return the texts with commas between them.
[[nodiscard]] std::string Joined(const std::vector<std::string>& texts);

/// @return "1 device", "2 devices".
[[nodiscard]] std::string Counted(std::size_t count, std::string_view noun);
