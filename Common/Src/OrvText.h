#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// The text without its leading spaces. Only the space 0x20 counts: tabs and line ends stay.
[[nodiscard]] std::string_view OrvTrimLeft(std::string_view text) noexcept;
/// The text without its trailing spaces.
[[nodiscard]] std::string_view OrvTrimRight(std::string_view text) noexcept;

/// The parts between separators. Two separators in a row give an empty part, a leading one an empty first part, a
/// trailing one no last part. A text without a separator gives no parts at all.
[[nodiscard]] std::vector<std::string> OrvSplitText(std::string_view text, char separator);

/// Room for the decimal text of a number and its terminator. Numbers that need more are refused.
inline constexpr size_t kOrvDecimalBytes = 10;

/// Writes `value` as decimal text.
/// @return true on success; false, with an empty text, when it needs 10 characters or more.
[[nodiscard]] bool OrvDecimalText(int32_t value, std::span<char, kOrvDecimalBytes> text) noexcept;
