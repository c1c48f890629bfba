#include "StandardUserToken.h"

#include <array>

UniqueHandle StandardUserToken()
{
    std::array<BYTE, SECURITY_MAX_SID_SIZE> administrators{};
    auto size = static_cast<DWORD>(administrators.size());
    HANDLE opened = nullptr;
    if (CreateWellKnownSid(WinBuiltinAdministratorsSid, nullptr, administrators.data(), &size) == FALSE ||
        OpenProcessToken(GetCurrentProcess(), TOKEN_ALL_ACCESS, &opened) == FALSE) {
        return nullptr;
    }
    const UniqueHandle own(opened);
    SID_AND_ATTRIBUTES disabled{administrators.data(), 0};
    HANDLE made = nullptr;
    CreateRestrictedToken(own.get(), DISABLE_MAX_PRIVILEGE, 1, &disabled, 0, nullptr, 0, nullptr, &made);
    return UniqueHandle(made);
}
