#include "CallerRights.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <array>
#include <stdexcept>

#include "Handles.h"

namespace {
/// Has this thread act as the same user without the administrators' group, as the engine has a step act as a user who
/// has not elevated the program.
class StandardUser
{
public:
    StandardUser()
    {
        HANDLE opened = nullptr;
        if (OpenProcessToken(GetCurrentProcess(), TOKEN_ALL_ACCESS, &opened) == FALSE) {
            throw std::runtime_error("the token of this process cannot be opened");
        }
        const UniqueHandle own(opened);
        std::array<BYTE, SECURITY_MAX_SID_SIZE> administrators{};
        auto size = static_cast<DWORD>(administrators.size());
        CreateWellKnownSid(WinBuiltinAdministratorsSid, nullptr, administrators.data(), &size);
        SID_AND_ATTRIBUTES disabled{administrators.data(), 0};
        HANDLE made = nullptr;
        if (CreateRestrictedToken(own.get(), 0, 1, &disabled, 0, nullptr, 0, nullptr, &made) == FALSE) {
            throw std::runtime_error("a token without the group cannot be made");
        }
        const UniqueHandle restricted(made);
        if (ImpersonateLoggedOnUser(restricted.get()) == FALSE) {
            throw std::runtime_error("this thread cannot act with the token");
        }
    }
    ~StandardUser() { RevertToSelf(); }
    StandardUser(const StandardUser&) = delete;
    StandardUser& operator=(const StandardUser&) = delete;
};
} // namespace

TEST(CallerRights, AnAdministratorIsOne)
{
    EXPECT_TRUE(CallerIsAdministrator());
}

TEST(CallerRights, AUserWithoutTheAdministratorsGroupIsNotOne)
{
    {
        const StandardUser user;
        EXPECT_FALSE(CallerIsAdministrator());
    }
    EXPECT_TRUE(CallerIsAdministrator());
}
