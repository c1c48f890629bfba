#include "Restart.h"

#include <windows.h>

#include "Handles.h"
#include "Trace.h"

int RestartMachine()
{
    Trace("Entering - RestartMachine");
    HANDLE token = nullptr;
    OpenProcessToken(GetCurrentProcess(), TOKEN_ADJUST_PRIVILEGES | TOKEN_QUERY, &token);
    const UniqueHandle owner(token);
    TOKEN_PRIVILEGES privileges{};
    LookupPrivilegeValueA(nullptr, "SeShutdownPrivilege", &privileges.Privileges[0].Luid);
    privileges.PrivilegeCount = 1;
    privileges.Privileges[0].Attributes = SE_PRIVILEGE_ENABLED;
    AdjustTokenPrivileges(token, FALSE, &privileges, 0, nullptr, nullptr);
    return ExitWindowsEx(EWX_REBOOT, 0);
}
