#pragma once

#include <optional>
#include <string>
#include <string_view>

inline constexpr int kFirstSearchPass = 1;
inline constexpr int kLastSearchPass = 4;

/// The ID to look for in a search pass. Every pass is derived from the device's full ID, never from the pass before it:
///   pass 1  the full ID
///   pass 2  without the revision
///   pass 3  without the sub-system, with the revision
///   pass 4  without both
/// A part that the ID does not have counts as lying behind its end: the text before it is then the whole ID, so passes
/// 2 and 4 repeat an earlier search and pass 3 appends the revision to the whole ID.
/// @param deviceId  Device key name, such as VEN_5D1A&DEV_1A2B&SUBSYS_00011A2B&REV_03.
/// @param pass      1 to 4.
/// @return no value when the pass keeps the search ID of the pass before it: the ID starts with a part that the pass
///         would cut, or `pass` is none of the four.
/// @throws std::out_of_range in pass 3 when the ID has no revision to keep.
[[nodiscard]] std::optional<std::string> SearchIdForPass(std::string_view deviceId, int pass);
