#include "CallerRights.h"

#include <windows.h>

#include <array>

bool CallerIsAdministrator()
{
    std::array<BYTE, SECURITY_MAX_SID_SIZE> administrators{};
    auto size = static_cast<DWORD>(administrators.size());
    BOOL isMember = FALSE;
    // Without a token, the platform uses the one that the engine gave this thread or process.
    return CreateWellKnownSid(WinBuiltinAdministratorsSid, nullptr, administrators.data(), &size) != FALSE &&
           CheckTokenMembership(nullptr, administrators.data(), &isMember) != FALSE && isMember != FALSE;
}
