#pragma once

#include <string_view>

/// The system families, as the prober of an installer library names them in the record; "Millenium" is its spelling.
inline constexpr std::string_view kFamilyWindows2000 = "Windows 2000";
inline constexpr std::string_view kFamilyWindowsWhistler = "Windows Whistler";
inline constexpr std::string_view kFamilyWindowsVista = "Windows Vista";
inline constexpr std::string_view kFamilyWindowsMe = "Windows Millenium";
inline constexpr std::string_view kFamilyWindows98 = "Windows 98";
inline constexpr std::string_view kFamilyWindowsNT = "Windows NT";
