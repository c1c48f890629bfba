#pragma once

#include <optional>
#include <string>
#include <string_view>

inline constexpr int kFirstSearchPass = 1;
inline constexpr int kLastSearchPass = 4;

/// What a search pass looks for.
enum class PassVerdict
{
    OwnId,             ///< the ID that belongs to the pass
    IdOfThePassBefore, ///< the device ID starts with a part that the pass would cut: the search is repeated
    Fault,             ///< the device ID has no revision that pass 3 could keep
};

struct SearchPass
{
    PassVerdict verdict = PassVerdict::IdOfThePassBefore;
    std::string searchId; ///< empty unless the pass has its own
};

/// Every pass is derived from the device's full ID, never from the pass before it:
///   pass 1  the full ID
///   pass 2  without the revision
///   pass 3  without the sub-system, with the revision
///   pass 4  without both
/// A part that the ID does not have counts as lying after its end: the text before it is then the whole ID, so passes 2
/// and 4 repeat an earlier search and pass 3 appends the revision to the whole ID.
/// @param deviceId  Device key name, such as VEN_5D1A&DEV_1A2B&SUBSYS_00011A2B&REV_03.
/// @param pass      1 to 4; any other pass repeats.
[[nodiscard]] SearchPass PlanPass(std::string_view deviceId, int pass);

/// The same for the installer, whose run ends with a device ID that has no revision.
/// @return no value when the pass keeps the search ID of the pass before it.
/// @throws std::out_of_range for PassVerdict::Fault.
[[nodiscard]] std::optional<std::string> SearchIdForPass(std::string_view deviceId, int pass);
