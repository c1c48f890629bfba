#pragma once

#include <array>
#include <cstdint>
#include <cstdio>
#include <string>

/// @return the number as the report shows errors and statuses: "e000022f".
[[nodiscard]] inline std::string Hex(uint32_t number)
{
    std::array<char, 9> text{};
    static_cast<void>(std::snprintf(text.data(), text.size(), "%08x", static_cast<unsigned>(number)));
    return text.data();
}
