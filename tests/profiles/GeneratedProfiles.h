#pragma once

#include <cstdint>
#include <string>

/// @return the content of an INI file with the peculiarities of real and of broken ones; the same for a number on every
///         machine. It may be in UTF-16 or UTF-8; most are in 8-bit text. One in forty is longer than any buffer of the
///         program.
[[nodiscard]] std::string GeneratedProfile(uint32_t number);
