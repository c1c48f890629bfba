#include "GeneratedProfiles.h"

#include <array>
#include <span>
#include <string_view>

#include "Choices.h"

using namespace std::string_view_literals;

namespace {
constexpr auto kNames = std::to_array<std::string_view>({"A",         "a",
                                                         "B",         "Section",
                                                         "Version",   "Manufacturer",
                                                         "Strings",   "Norda.NTamd64.6.1",
                                                         "Win732E",   "k",
                                                         "K",         "key",
                                                         "InfDir",    "Signature",
                                                         "%Norda%",   "#include",
                                                         ";note",     "two words",
                                                         "tab\tin",   "x]y",
                                                         "x[y",       "\xE4\xF6",
                                                         "\xC4\xD6",  "\xA0nb",
                                                         "",          "",
                                                         "\x1A",      "\x7F\x80\x81\x8D\xFF",
                                                         "\x83\x5C",  "\x82\xA0",
                                                         "nul\0in"sv, "\0nul"sv});
constexpr auto kValues = std::to_array<std::string_view>({"",
                                                          "1",
                                                          "value",
                                                          "\"quoted\"",
                                                          "'single'",
                                                          "\"open",
                                                          "close\"",
                                                          "\"mixed'",
                                                          "\"",
                                                          "\"\"",
                                                          "''",
                                                          "\"\"twice\"\"",
                                                          "\" blanks \"",
                                                          "a=b",
                                                          "=",
                                                          "==",
                                                          "Norda, NTamd64.6.1, NTamd64.6.2",
                                                          "PCI\\VEN_5D1A&DEV_1A2B&SUBSYS_00015D1A",
                                                          "v ; remark",
                                                          "\ttab",
                                                          "$Chicago$",
                                                          "\"$Windows NT$\"",
                                                          "\xE9\xE8\x80",
                                                          "\x1A",
                                                          "a\x1A"
                                                          "b",
                                                          "nul\0in"sv,
                                                          "\0nul"sv,
                                                          "\x83\x5C\x83\x5D\x81\x40",
                                                          "\"\x83\x5C\"",
                                                          "\x83",
                                                          "[no]"});
constexpr auto kBlanks = std::to_array<std::string_view>({" ", "\t", "  ", "\v", "\f", "\x1A", " \t ", "\xA0"});
constexpr auto kLineEnds = std::to_array<std::string_view>({"\r\n", "\n", "\r", "\n\n", "\r\r\n", "\n\r", "\r\n\r\n"});

/// UTF-16 units that mean something to the reader or to the conversion.
constexpr auto kUnits =
    std::to_array<char16_t>({0x0000, 0x0085, 0x00A0, 0x00E9, 0x0100, 0x0141, 0x0416, 0x20AC, 0x2003, 0x2028,
                             0x2212, 0x3000, 0x4E2D, 0xD83D, 0xDE00, 0xFEFF, 0xFF1D, 0xFF3B, 0xFFFD, 0xFFFF});

class ProfileWriter
{
public:
    explicit ProfileWriter(uint32_t number)
        : m_choices(number),
          m_usualEnd(m_choices.OneOf(std::span(kLineEnds).first(3))),
          m_lines(number % 40 == 0 ? 400 + m_choices.Below(2500) : 1 + m_choices.Below(30))
    {
    }

    std::string Write()
    {
        for (std::size_t line = 0; line < m_lines; ++line) {
            PutLine();
            m_text += m_choices.OnceIn(12) ? m_choices.OneOf(kLineEnds) : m_usualEnd;
        }
        if (m_choices.OnceIn(4)) {
            m_text.resize(m_text.size() - m_choices.Below(m_text.size()) % 3);
        }
        Damage();
        return Encoded();
    }

private:
    std::string_view Name()
    {
        return m_choices.OneOf(std::span(kNames).first(m_choices.OnceIn(3) ? kNames.size() : 16));
    }
    void PutBlanks(std::size_t onceIn)
    {
        if (m_choices.OnceIn(onceIn)) {
            m_text += m_choices.OneOf(kBlanks);
        }
    }

    void PutLine()
    {
        PutBlanks(6);
        const std::size_t sectionsOnceIn = m_lines > 400 ? 200 : 5;
        if (m_choices.OnceIn(sectionsOnceIn)) {
            PutSection();
        } else if (m_choices.OnceIn(12)) {
            m_text += m_choices.OnceIn(2) ? ";" : "; remark = ";
            m_text += Name();
        } else if (m_choices.OnceIn(12)) {
            m_text += Name();
        } else if (!m_choices.OnceIn(12)) {
            PutEntry();
        }
        PutBlanks(6);
    }

    void PutSection()
    {
        m_text += '[';
        PutBlanks(8);
        m_text += Name();
        PutBlanks(8);
        if (!m_choices.OnceIn(10)) {
            m_text += ']';
        }
        if (m_choices.OnceIn(10)) {
            constexpr auto kAfter = std::to_array<std::string_view>({"]", " ; remark", "; [b]", "k=1", " x ] y"});
            m_text += m_choices.OneOf(kAfter);
        }
    }

    void PutEntry()
    {
        m_text += Name();
        PutBlanks(5);
        m_text += '=';
        PutBlanks(4);
        m_text += m_choices.OneOf(kValues);
        // Answers of every length around the sizes of the program's buffers.
        if (m_choices.OnceIn(m_lines > 400 ? 2 : 10)) {
            m_text.append(m_choices.Below(m_choices.OnceIn(4) ? 1100 : 90), 'v');
            m_text += m_choices.OneOf(kValues);
        }
    }

    void Damage()
    {
        if (!m_choices.OnceIn(5) || m_text.empty()) {
            return;
        }
        for (std::size_t left = 1 + m_choices.Below(4); left > 0; --left) {
            constexpr std::string_view kBytes = "\0[]=;\"' \t\r\n\x1A\xFE\xFF\xEF\xBB\xBF\x81"sv;
            const std::size_t at = m_choices.Below(m_text.size());
            const char byte = m_choices.OneOf(kBytes);
            if (m_choices.OnceIn(2)) {
                m_text[at] = byte;
            } else {
                m_text.insert(at, 1, byte);
            }
        }
    }

    std::string Encoded()
    {
        switch (m_choices.Below(16)) {
            case 0:
                return "\xFF\xFE" + Utf16(1, 0);
            case 1:
                return "\xFE\xFF" + Utf16(0, 1);
            case 2:
                return Utf16(1, 0);
            case 3:
                return "\xEF\xBB\xBF" + m_text;
            case 4:
                return "\xEF\xBB\xBF\xC3\xA9=\xE2\x82\xAC\n\xE2\x82=\xF0\x9F\x98\x80\xF0\x9F\n\xC0\x80\xED\xA0\x80\n" +
                       m_text;
            default:
                return m_text;
        }
    }

    /// @param low, high  Where the two bytes of a unit are.
    std::string Utf16(std::size_t highAt, std::size_t lowAt)
    {
        std::string bytes;
        for (const char c : m_text) {
            std::array<char, 2> unit{};
            unit[lowAt] = c;
            if (m_choices.OnceIn(40)) {
                const char16_t other = m_choices.OneOf(kUnits);
                unit[lowAt] = static_cast<char>(other & 0xFF);
                unit[highAt] = static_cast<char>(other >> 8);
            }
            bytes.append(unit.data(), unit.size());
        }
        return bytes;
    }

    Choices m_choices;
    std::string_view m_usualEnd;
    std::size_t m_lines;
    std::string m_text;
};
} // namespace

std::string GeneratedProfile(uint32_t number)
{
    return ProfileWriter(number).Write();
}
