#pragma once

#include <cstdint>
#include <string_view>

/// Status of an unsupported system.
inline constexpr uint32_t kStatusSystemNotServed = 0x80640013;

/// Platform identifiers of the version record (VER_PLATFORM_... of winnt.h).
inline constexpr uint32_t kPlatformWindows9x = 1;
inline constexpr uint32_t kPlatformWindowsNT = 2;

/// How the prober classifies a system.
struct SystemFamily
{
    std::string_view name;                    ///< family name for the record, empty when it has none
    uint32_t status = kStatusSystemNotServed; ///< 0 when the family is supported
};

/// Names the family of a system.
/// @param platform  Platform identifier of the version record.
/// @param major     Major version that the system reports to this process.
/// @param minor     Minor version that the system reports to this process.
[[nodiscard]] SystemFamily FamilyForVersion(uint32_t platform, uint32_t major, uint32_t minor) noexcept;
