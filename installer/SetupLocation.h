#pragma once

#include <string>

/// Finds where the program was started and where it lives, and fills LocationInfo.
/// @param programName  argv[0].
/// @return 1 when the setup INI file is beside the program, else 0.
int SetLocationInfo(const std::string& programName);
