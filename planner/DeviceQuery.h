#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "Plan.h"

/// The device of a plan that a user means.
struct FoundDevice
{
    const DevicePlan* served = nullptr;
    const RejectedDevice* rejected = nullptr;
};

/// @param text     A key name, a hardware ID ("PCI\VEN_...") or a part of either, letter case aside. A whole key name
///                 wins over parts.
/// @param problem  Receives, in one line, why the text does not name one device.
[[nodiscard]] std::optional<FoundDevice> FindDevice(const MachinePlan& plan, std::string_view text,
                                                    std::string& problem);
