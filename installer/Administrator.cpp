#include "Administrator.h"

#include <windows.h>

#include <algorithm>
#include <span>
#include <vector>

#include "Handles.h"
#include "Trace.h"

namespace {
struct SidCloser
{
    void operator()(void* sid) const noexcept { FreeSid(sid); }
};
using UniqueSid = std::unique_ptr<void, SidCloser>;

UniqueSid AdministratorsSid()
{
    SID_IDENTIFIER_AUTHORITY authority = {SECURITY_NT_AUTHORITY};
    PSID sid = nullptr;
    if (AllocateAndInitializeSid(&authority, 2, SECURITY_BUILTIN_DOMAIN_RID, DOMAIN_ALIAS_RID_ADMINS, 0, 0, 0, 0, 0, 0,
                                 &sid) == FALSE) {
        return nullptr;
    }
    return UniqueSid(sid);
}

int HoldsAdministrators(HANDLE token)
{
    DWORD bytes = 0;
    if (GetTokenInformation(token, TokenGroups, nullptr, 0, &bytes) != FALSE ||
        GetLastError() != ERROR_INSUFFICIENT_BUFFER) {
        return 0;
    }
    std::vector<std::byte> buffer(bytes);
    if (GetTokenInformation(token, TokenGroups, buffer.data(), bytes, &bytes) == FALSE) {
        return 0;
    }
    const UniqueSid administrators = AdministratorsSid();
    if (!administrators) {
        return 0;
    }
    const auto& groups = *reinterpret_cast<const TOKEN_GROUPS*>(buffer.data());
    const std::span<const SID_AND_ATTRIBUTES> listed(groups.Groups, groups.GroupCount);
    const bool found = std::ranges::any_of(
        listed, [&](const SID_AND_ATTRIBUTES& group) { return EqualSid(group.Sid, administrators.get()) != FALSE; });
    return found ? 1 : 0;
}
} // namespace

int RunningAsAdministrator()
{
    Trace("Entering - RunningAsAdministrator");
    HANDLE opened = nullptr;
    if (OpenThreadToken(GetCurrentThread(), TOKEN_QUERY, FALSE, &opened) == FALSE) {
        const DWORD error = GetLastError();
        if (error != ERROR_NO_TOKEN) {
            // A system without security has no tokens: everybody is an administrator there.
            return error == ERROR_CALL_NOT_IMPLEMENTED ? 1 : 0;
        }
        if (OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &opened) == FALSE) {
            return 0;
        }
    }
    const UniqueHandle token(opened);
    return HoldsAdministrators(token.get());
}
