#pragma once

#include <string_view>

/// What a run leaves below HKEY_LOCAL_MACHINE. The package, other installers and the management software read it.

/// The key of the run's results.
inline constexpr char kBasedriversKey[] = R"(SOFTWARE\Norda\Basedrivers)";
inline constexpr char kInstallValue[] = "Install";
inline constexpr char kVersionValue[] = "Version";
inline constexpr char kRebootValue[] = "Reboot";
inline constexpr char kRebootNeededValue[] = "RebootNeeded";
inline constexpr std::string_view kResultSuccess = "SUCCESS";
inline constexpr std::string_view kResultFailure = "FAILURE";

/// The trace is on while this key exists.
inline constexpr char kTraceSwitchKey[] = R"(SOFTWARE\Norda\Basedrivers\Debug)";
static_assert(std::string_view(kTraceSwitchKey).starts_with(kBasedriversKey));

/// The uninstaller's list of what is installed, and the value of this kit in it.
inline constexpr char kRegistrationKey[] = R"(SOFTWARE\Norda\Tavunstl\Dins)";
inline constexpr char kRegistrationValue[] = "Morvix.din";
