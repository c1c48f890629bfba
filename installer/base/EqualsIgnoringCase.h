#pragma once

#include <string_view>

/// @return true when `text` equals `other` as a whole, apart from the case of the letters A to Z.
[[nodiscard]] bool EqualsIgnoringCase(std::string_view text, std::string_view other);
