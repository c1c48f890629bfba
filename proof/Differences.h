#pragma once

#include <string>
#include <string_view>

/// What has changed between two lists of lines, whatever their order: the lines of the first alone after "- ", those of
/// the second alone after "+ ", sorted by what they say.
[[nodiscard]] std::string Differences(std::string_view before, std::string_view after);
