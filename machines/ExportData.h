#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "ExportLines.h"
#include "StoredText.h"

/// The right side of a value's line in an export, which may go on in the lines that follow.
class ExportData
{
public:
    enum class State
    {
        Complete,
        Deletes,   ///< "-": the value is removed
        OpenText,  ///< the text's closing quotation mark is still to come, in a later line
        OpenBytes, ///< more bytes follow in the next line
        Bad,
    };

    /// @param data      What follows the equals sign.
    /// @param text      How the file is written: in 8-bit form each unit is a byte.
    /// @param wideHex   The bytes of texts are UTF-16, as from version 5 of the format on.
    State Begin(std::u16string_view data, ExportText text, bool wideHex);
    /// Goes on with the next line; only in a state that is open.
    State Continue(std::u16string_view line);
    /// @return the value; only when it is complete. What was read is moved out.
    [[nodiscard]] StoredValue Take();
    /// @return true when the last line that was read ends the value for certain: more digits cannot follow. Bytes may
    ///         always go on, except after the end of a list of texts.
    [[nodiscard]] bool IsSurelyWhole() const { return m_isSurelyWhole; }

private:
    State BeginNumber(std::u16string_view digits);
    State BeginBytes(std::u16string_view data, bool wideHex);
    State ReadText(std::u16string_view text);
    State ReadBytes(std::u16string_view bytes);

    StoredValue m_value;
    std::u16string m_text;
    State m_state = State::Bad;
    bool m_isSurelyWhole = false;
};

/// Reads a quoted name at the front of a line; "@" is the name of the unnamed value, which is empty.
/// @param line  Receives what follows the name.
/// @param name  Empty before.
/// @return false when the line does not begin with a name.
[[nodiscard]] bool TakeName(std::u16string_view& line, std::u16string& name);

[[nodiscard]] std::u16string_view WithoutBlanks(std::u16string_view text);
