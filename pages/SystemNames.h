#pragma once

#include <string_view>

/// @param section  Section of Morvix.ini, such as "Win732E".
/// @return the system's name for people, such as "Windows 7 x64"; the section itself when there is no such system.
[[nodiscard]] std::string_view NameOfSystem(std::string_view section);
