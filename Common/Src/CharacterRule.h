#pragma once

#include <cstddef>
#include <string_view>

#include "LeadByte.h"

/// How 8-bit text divides into characters.
class CharacterRule
{
public:
    /// A code page with characters of one or two bytes.
    // NOLINTNEXTLINE(google-explicit-constructor): such a test says it all
    constexpr CharacterRule(LeadByteTest isLeadByte) noexcept : m_isLeadByte(isLeadByte) {}
    [[nodiscard]] static constexpr CharacterRule Utf8() noexcept { return {nullptr}; }

    /// @param text  Not empty.
    /// @return the number of bytes of its first character. An incomplete one is as long as what is there of it, and a
    ///         byte that starts no character is one by itself.
    [[nodiscard]] std::size_t FirstCharacterBytes(std::string_view text) const;

private:
    LeadByteTest m_isLeadByte; ///< null for UTF-8, which such a test cannot describe
};

/// The rule of the system's code page, in which the texts of the resources are shown.
[[nodiscard]] CharacterRule SystemCharacterRule();
