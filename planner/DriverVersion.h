#pragma once

#include <array>
#include <compare>
#include <cstdint>
#include <optional>
#include <string_view>

/// Date and version of a driver, as "DriverVer" of an INF gives them: "mm/dd/yyyy,a.b.c.d".
struct DriverVersion
{
    std::optional<std::array<uint32_t, 4>> version; ///< missing parts are 0
    std::optional<std::array<uint32_t, 3>> date;    ///< year, month, day
    bool operator==(const DriverVersion&) const = default;
};

/// @param text  The value, blanks and a comment after it included.
/// @return what of it can be read.
[[nodiscard]] DriverVersion ParseDriverVersion(std::string_view text);

/// Compares by version, and by date where the versions are equal or one is missing.
/// @return unordered when neither decides.
[[nodiscard]] std::partial_ordering Compare(const DriverVersion& left, const DriverVersion& right);
