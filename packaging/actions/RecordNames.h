#pragma once

/// Where a run of the program leaves records, below HKEY_LOCAL_MACHINE.

inline constexpr char kResultKey[] = R"(SOFTWARE\Norda\Basedrivers)";
/// The uninstaller's list of what is installed, and the value of this kit in it.
inline constexpr char kRegistrationKey[] = R"(SOFTWARE\Norda\Tavunstl\Dins)";
inline constexpr char kRegistrationValue[] = "Morvix.din";
