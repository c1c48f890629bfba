#pragma once

#include <span>
#include <string_view>

/// Contents of INI files that a fuzzer found: each reaches something in the reader that the others do not.
[[nodiscard]] std::span<const std::string_view> FoundProfiles();
