#pragma once

#include <cstdint>

/// Whether a window of a process can be seen. Services have no visible windows, and since Windows Vista (6.0) nobody is
/// logged on to session 0, whatever its window station says.
/// @param stationIsVisible  The process's window station has a display.
/// @param session           Number of the session in which the process runs.
/// @param majorVersion      Major version of the system.
constexpr bool WindowsAreSeenIn(bool stationIsVisible, uint32_t session, uint32_t majorVersion)
{
    return stationIsVisible && (session != 0 || majorVersion < 6);
}

/// Whether anybody can see, and so answer, a window of this process. When this cannot be determined the answer is no: a
/// question that fails can be looked up afterwards, one that waits in an unseen window cannot.
[[nodiscard]] bool WindowsAreSeen() noexcept;
