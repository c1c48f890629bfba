#pragma once

#include <string>
#include <vector>

/// The kept lists of the program's texts, which lie beside this program (see texts\README.md).

/// A line that the program traces.
struct KeptLine
{
    /// Which neighbour of the line is a value of the run.
    enum class Value
    {
        None,
        Next,
        Previous,
        Following,
        Version,
    };
    bool traced = false; ///< a run of the test traces it
    Value value = Value::None;
    std::string text; ///< with its stand-ins, line feeds apart
};

/// Those that a run may trace. Throws std::runtime_error for a list that cannot be read.
[[nodiscard]] std::vector<KeptLine> KeptLines();

/// The texts of another list, in its order, with their line feeds.
[[nodiscard]] std::vector<std::string> KeptTexts(const std::string& fileName);

/// @return whether `line` is what `kept` says, with anything in the place of each stand-in that is meant for it.
[[nodiscard]] bool IsKeptLine(const std::string& line, const std::string& kept);

/// The parts of a kept line that the program itself holds.
[[nodiscard]] std::vector<std::string> PartsOf(const std::string& kept);

/// Finds the line of a run's trace that no kept line explains.
/// @param messages  The trace without "Morvix: ".
/// @return the first such line with the one before it, or an empty text.
[[nodiscard]] std::string UnkeptLine(const std::vector<std::string>& messages);

/// @return whether the bytes of a program or library hold a text, in 8-bit or wide form: as it stands, or in the
///         instructions that put it together eight bytes at a time.
[[nodiscard]] bool HoldsText(const std::string& image, const std::string& text);
