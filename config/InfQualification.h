#pragma once

#include <string_view>

/// Which INF files count, decided from their texts.

/// @return the "Signature" that INF files of a system family carry; empty for a family that is not known, so that there
///         only INF files without a signature qualify. Family names are compared exactly.
[[nodiscard]] std::string_view ExpectedSignature(std::string_view family);

/// @param value  Value of one key of an INF's "Manufacturer" section.
/// @return true when one of its parts between commas and blanks is one of our brand names, letter case included.
[[nodiscard]] bool NamesOurBrand(std::string_view value);
