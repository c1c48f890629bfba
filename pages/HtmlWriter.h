#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

/// Markup of this program's own. Only a constant of the program can become one, so no text of a kit or a registry ever
/// does.
class Markup
{
public:
    template <std::size_t Size>
    // cppcheck-suppress noExplicitConstructor ; a literal is markup without further words
    consteval Markup(const char (&literal)[Size]) : m_text(literal, Size - 1)
    {
    }
    [[nodiscard]] constexpr std::string_view Text() const { return m_text; }

private:
    std::string_view m_text;
};

/// @return the text as HTML that shows it and does nothing else, between tags and between quotation marks: markup
///         characters as references; control characters, line separators, invisible marks and marks that turn the
///         direction of writing as a visible escape such as "\u202E"; bytes that are not UTF-8 such as "\xFF".
[[nodiscard]] std::string HtmlText(std::string_view text);

/// Appends HTML to a text.
class HtmlWriter
{
public:
    /// @param out  Must outlive the writer.
    explicit HtmlWriter(std::string& out) : m_out(out) {}

    HtmlWriter& Put(const Markup& markup)
    {
        m_out += markup.Text();
        return *this;
    }
    HtmlWriter& Text(std::string_view text)
    {
        m_out += HtmlText(text);
        return *this;
    }
    /// Digits alone, for names and attributes.
    HtmlWriter& Number(std::uint64_t number);
    /// An attribute with a blank before it.
    HtmlWriter& Attribute(const Markup& name, std::string_view value);

private:
    std::string& m_out;
};

/// @return the number for people: "10,000".
[[nodiscard]] std::string Grouped(std::uint64_t number);
/// @return "1 machine", "10,000 machines".
[[nodiscard]] std::string CountOf(std::uint64_t number, std::string_view noun);
