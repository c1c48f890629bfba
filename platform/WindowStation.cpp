#include "WindowStation.h"

#include <windows.h>

bool WindowsAreSeen() noexcept
{
    // The station's handle belongs to the system and is not closed.
    const HWINSTA station = GetProcessWindowStation();
    USEROBJECTFLAGS flags{};
    DWORD session = 0;
    OSVERSIONINFOA version{};
    version.dwOSVersionInfoSize = sizeof(version);
    if (station == nullptr || !GetUserObjectInformationA(station, UOI_FLAGS, &flags, sizeof(flags), nullptr) ||
        !ProcessIdToSessionId(GetCurrentProcessId(), &session) || !GetVersionExA(&version)) {
        return false;
    }
    return WindowsAreSeenIn((flags.dwFlags & WSF_VISIBLE) != 0, session, version.dwMajorVersion);
}
