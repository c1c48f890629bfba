#pragma once

/// What a run of the program leaves below HKEY_LOCAL_MACHINE besides its result key: the uninstaller's list of what is
/// installed, and the value of this kit in it.
inline constexpr char kRegistrationKey[] = R"(SOFTWARE\Norda\Tavunstl\Dins)";
inline constexpr char kRegistrationValue[] = "Morvix.din";
