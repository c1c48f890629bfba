#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

#include "StoredText.h"

/// How the text of an export is written.
enum class ExportText
{
    Unknown,  ///< nothing was read yet
    EightBit, ///< in the code page of the machine
    Utf8,
    Utf16,        ///< low byte first
    Utf16Swapped, ///< high byte first; no export is written like this
};

/// One line of an export, without its end.
struct ExportLine
{
    std::string_view bytes; ///< valid during the call only
    ExportText text = ExportText::Unknown;
    std::size_t number = 0; ///< counted from 1
    bool isLast = false;    ///< the file ends here, without an end of line
    bool isCut = false;     ///< longer than any line of an export; the rest is left out
    bool isShifted = false; ///< a byte is missing or too many in this line

    /// @return the first character; 0 for an empty line.
    [[nodiscard]] char16_t First() const;
    /// @return true when it ends with a backslash: bytes go on in the next line.
    [[nodiscard]] bool GoesOn() const;
    /// Reads the line's text; in 8-bit form each unit is one byte.
    /// @param read  Receives it. One text for all lines is allocated only a few times.
    void Read(std::u16string& read) const;
};

/// Cuts an export into its lines, block by block. Files that were joined may change the form of the text at the
/// beginning of a line. A UTF-16 file that has lost a byte is followed again from the next line on.
class ExportLines
{
public:
    using Sink = std::function<void(const ExportLine&)>;
    explicit ExportLines(Sink sink) : m_sink(std::move(sink)) {}

    void Feed(std::string_view bytes);
    /// Passes on what is left when the file ends.
    void Finish();
    /// @return the form of the text at this point.
    [[nodiscard]] ExportText Text() const { return m_text; }
    [[nodiscard]] bool EndsInsideCharacter() const { return m_endsInsideCharacter; }

private:
    struct LineEnd
    {
        std::size_t length = 0; ///< of the line
        std::size_t next = 0;   ///< where the next line begins
        bool isShifted = false;
    };

    [[nodiscard]] bool IsWide() const { return m_text == ExportText::Utf16; }
    std::size_t FollowMark(std::string_view bytes);
    [[nodiscard]] bool FindEnd(std::string_view bytes, std::size_t from, LineEnd& end) const;
    std::size_t TakeLines(std::string_view bytes, bool fileEnds);
    void Emit(std::string_view bytes, bool isLast, bool isShifted);

    Sink m_sink;
    ExportText m_text = ExportText::Unknown;
    std::string m_rest;         // the line that is not complete yet
    std::size_t m_searched = 0; // so many bytes of m_rest need not be searched for an end of line again
    std::size_t m_number = 0;
    bool m_isInLine = false;  // its beginning was read, its end was not
    bool m_skipsRest = false; // of a line that was too long
    bool m_endsInsideCharacter = false;
};
