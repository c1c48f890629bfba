#pragma once

#include <string_view>

/// The key of the run's results, below HKEY_LOCAL_MACHINE. Other installers and the management software read it.
inline constexpr char kBasedriversKey[] = R"(SOFTWARE\Norda\Basedrivers)";
/// The trace is on while this key exists.
inline constexpr char kTraceSwitchKey[] = R"(SOFTWARE\Norda\Basedrivers\Debug)";
static_assert(std::string_view(kTraceSwitchKey).starts_with(kBasedriversKey));
