#pragma once

#include <cstdint>
#include <string>
#include <string_view>

/// The platform's own CodePageConverter. The system's tables also give letters that only resemble the ones that a code
/// page lacks; outside Windows a question mark replaces them.
[[nodiscard]] std::string InCodePage(std::u16string_view text, uint32_t codePage);
