#pragma once

#include <cstdint>

/// What became of an attempt to bind a hardware ID to an INF, and how that is answered. A malformed call (no record,
/// unknown flags) is none of these: it is answered with an HRESULT before the system is asked anything.
enum class InstallOutcome
{
    Bound,    ///< the system has bound the driver
    Refused,  ///< the system did not take the driver, for whatever reason
    NotThere, ///< no device with that ID is present, so no driver was judged
};

/// The one status that callers count as a refused driver; ERROR_DEVINST_ALREADY_EXISTS by its number.
inline constexpr uint32_t kStatusRefused = 0xE0000207;

/// The system's own code for a device that is not present, ERROR_NO_SUCH_DEVINST.
inline constexpr uint32_t kErrorNotThere = 0xE000020B;

/// @param error  0, or why the system did not bind the driver: a Win32 error or a set-up error 0xE000....
/// @return Refused for every error but the one that says that there is no device: a driver that is not bound was not
///         installed, and the caller must not take an older one's file for it.
[[nodiscard]] InstallOutcome OutcomeOf(uint32_t error) noexcept;

/// @return the status that InstallForRecord answers: 0, kStatusRefused, or for a device that is not there its own code.
[[nodiscard]] int32_t StatusOf(InstallOutcome outcome) noexcept;
