#pragma once

#include <cstdint>

/// The outcome of an attempt to bind a hardware ID to an INF. A malformed call (no record, unknown flags) has none: it
/// fails with an HRESULT before the system is asked anything.
enum class InstallOutcome
{
    Bound,    ///< the system has bound the driver
    Refused,  ///< the system refused the driver, for whatever reason
    NotThere, ///< no device with that ID is present, so no driver was judged
};

/// The one status that callers count as a refused driver; its number is that of ERROR_DEVINST_ALREADY_EXISTS.
inline constexpr uint32_t kStatusRefused = 0xE0000207;

/// The system's own code for a device that is not present, ERROR_NO_SUCH_DEVINST.
inline constexpr uint32_t kErrorNotThere = 0xE000020B;

/// @param error  0, or why the system did not bind the driver: a Win32 error or a set-up error 0xE000....
/// @return Refused for every error except "no such device": a driver that is not bound was not installed, and the
///         caller must not mistake an older driver's file for it.
[[nodiscard]] InstallOutcome OutcomeOf(uint32_t error) noexcept;

/// @return the status of InstallForRecord: 0, kStatusRefused, or kErrorNotThere for a device that is not present.
[[nodiscard]] int32_t StatusOf(InstallOutcome outcome) noexcept;
