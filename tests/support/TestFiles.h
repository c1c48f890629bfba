#pragma once

#include <string>

/// @return the full path of a file that the build leaves beside the test programs, such as "versioned_file.dll".
[[nodiscard]] std::string TestFile(const std::string& name);
