#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

#include "FamilyNames.h"

/// The run's install record. The installer library reads it by position, so the layout is fixed: 1280 bytes, zeroed at
/// start, 8-bit NUL-terminated texts.
struct DriverInstallRecord
{
    std::array<char, 204> osFamily{};    ///< family name (FamilyNames.h), written by the system prober
    std::array<char, 256> infPath{};     ///< full path of the matched INF, upper case
    std::array<char, 256> reservedOne{}; ///< zero
    std::array<char, 300> hardwareId{};  ///< "PCI\" and the device's full key name
    std::array<char, 264> reservedTwo{}; ///< zero
};
static_assert(sizeof(DriverInstallRecord) == 1280);
static_assert(offsetof(DriverInstallRecord, infPath) == 204);
static_assert(offsetof(DriverInstallRecord, hardwareId) == 716);

/// @return the text in a fixed, possibly unterminated buffer.
template <std::size_t Size>
[[nodiscard]] std::string_view TextIn(const std::array<char, Size>& buffer)
{
    const std::string_view whole(buffer.data(), Size);
    return whole.substr(0, whole.find('\0'));
}

/// @return the record's family name; at most the 204 characters that its field holds.
[[nodiscard]] inline std::string FamilyOf(const DriverInstallRecord& record)
{
    return std::string(TextIn(record.osFamily));
}
