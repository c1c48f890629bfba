#pragma once

#include <string>
#include <vector>

#include "CheckKit.h"

/// @return for each finding 16 hexadecimal digits that stay the same while its rule, its file and the text of its line
///         do, wherever the line moves to. Findings that are alike in all three differ by their order.
[[nodiscard]] std::vector<std::string> FingerprintsOf(const std::vector<Finding>& findings);
