#pragma once

#include <string>
#include <string_view>

#include "FleetReport.h"

/// How the page marks a state: by a shape and a word, and by a colour besides.
enum class FleetMark
{
    Bad,
    Doubtful,
    Good,
    None,
};

/// @return the state's name in the page's own markup: "lacks".
[[nodiscard]] std::string_view NameOf(FleetState state);
/// @return the state in words: "Lacks a driver".
[[nodiscard]] std::string_view InWords(FleetState state);
/// @return the state in a few words more, for a legend.
[[nodiscard]] std::string_view Meaning(FleetState state);
[[nodiscard]] FleetMark MarkOf(FleetState state);

struct FleetVerdict
{
    FleetMark mark = FleetMark::Good;
    std::string sentence; ///< one, for people
};
/// @return what the whole fleet amounts to.
[[nodiscard]] FleetVerdict VerdictOf(const FleetReport& report);
