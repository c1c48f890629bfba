#pragma once

#include <string>

/// Malformed contents, for setup INIs and INF files alike. `good` is the content that they are derived from.

[[nodiscard]] std::string BinaryNoise(std::size_t bytes);
/// 50 MB of comment lines.
[[nodiscard]] std::string FiftyMegabytesOfComments();
/// A comment of 50 MB, as the last line and without an end.
[[nodiscard]] std::string FiftyMegabyteLine();
/// 10,000 sections with a line each.
[[nodiscard]] std::string TenThousandSections();

/// Every line as a comment.
[[nodiscard]] std::string OnlyComments(const std::string& good);
/// Without any line end, and a megabyte long.
[[nodiscard]] std::string OneEndlessLine(const std::string& good);
/// A NUL at the end of every line.
[[nodiscard]] std::string WithNuls(const std::string& good);
/// A carriage return for every line end.
[[nodiscard]] std::string WithOldMacLineEnds(const std::string& good);
/// UTF-16, little-endian, without a mark.
[[nodiscard]] std::string AsUtf16(const std::string& good);
/// `good` with each closing bracket of a section's first line left out.
[[nodiscard]] std::string WithUnclosedBrackets(const std::string& good);
/// `text` with `replacement` for the first `part`, which must be there.
[[nodiscard]] std::string Replaced(std::string text, const std::string& part, const std::string& replacement);

inline constexpr char kUtf16Mark[] = "\xFF\xFE";
inline constexpr char kUtf8Mark[] = "\xEF\xBB\xBF";
