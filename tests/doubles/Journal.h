#pragma once

#include <cstdint>
#include <string>

/// What every double shares: a journal of its calls and the answers that a test has set for it. Both are beside the
/// double's own file.

/// @return the full path of a file beside the double.
[[nodiscard]] std::string BesideTheDouble(const std::string& name);

/// Appends one line to journal.txt. Several doubles in one folder share the journal, so it also shows their order.
void WriteJournal(const std::string& line);

/// @return the text of `key` in the section "Answers" of <double's name>.answers.ini, or `otherwise` when there is
/// none.
[[nodiscard]] std::string Answer(const std::string& key, const std::string& otherwise = {});

/// @return the answer as a number, decimal or with 0x; 0 when there is none.
[[nodiscard]] uint32_t AnswerNumber(const std::string& key);

/// Waits until there is a file of this name beside the double.
void HoldUntilThereIs(const std::string& name);

/// @return `number` as 0x and eight hexadecimal digits.
[[nodiscard]] std::string Hex(uint32_t number);
