#pragma once

#include <string>

/// @return `text`, which is in the system's code page, as UTF-16.
[[nodiscard]] std::wstring Wide(const std::string& text);
