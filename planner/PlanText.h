#pragma once

#include <string>

#include "MachinePaths.h"
#include "Plan.h"
#include "TextStyle.h"

/// @return a machine's plan for people, with a line feed at its end.
[[nodiscard]] std::string PlanText(const MachinePlan& plan, const MachinePaths& paths, const TextStyle& style);

/// @return in words why a device is not served.
[[nodiscard]] std::string_view InWords(DeviceVerdict verdict);
/// @return true for a device whose vendor number is in the table of accepted IDs: worth mentioning when it is not
/// served.
[[nodiscard]] bool IsOfServedVendor(std::string_view deviceKey);
/// @return in words whether the device was there.
[[nodiscard]] std::string_view InWords(Presence presence);
/// @return what the result value will say, and what that rests on.
[[nodiscard]] std::string InWords(const Report& report);
