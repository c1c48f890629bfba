#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

/// Lists of texts as the registry stores them: each text with its terminator, one more terminator at the end.

/// Reads stored data. All empty texts are dropped; a last text without a terminator counts.
/// @param data  The stored bytes, of any length and content.
[[nodiscard]] std::vector<std::string> OrvReadMultiString(std::string_view data);

/// @return the bytes that texts of these lengths take when stored: one terminator each and one at the end.
template <class Texts>
[[nodiscard]] size_t OrvMultiStringBytes(const Texts& texts)
{
    size_t bytes = 1;
    for (const auto& text : texts) {
        bytes += text.Length() + 1;
    }
    return bytes;
}
