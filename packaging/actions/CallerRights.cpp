#include "CallerRights.h"

#include <windows.h>

#include <array>

bool CallerIsAdministrator()
{
    std::array<BYTE, SECURITY_MAX_SID_SIZE> administrators{};
    auto size = static_cast<DWORD>(administrators.size());
    BOOL isMember = FALSE;
    // Asked without a token, the platform takes the one that the engine has given this thread or process.
    return CreateWellKnownSid(WinBuiltinAdministratorsSid, nullptr, administrators.data(), &size) != FALSE &&
           CheckTokenMembership(nullptr, administrators.data(), &isMember) != FALSE && isMember != FALSE;
}
