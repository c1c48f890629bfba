#include "SingleInstance.h"

#include <windows.h>

#include <string>

#include "LangString.h"
#include "OSVersion.h"
#include "Trace.h"

int PreviousInstanceRunning(const char* mutexName)
{
    Trace("Entering - PreviousInstanceRunning");
    // Never closed: the mutex marks this process as the running instance until it ends.
    static_cast<void>(CreateMutexA(nullptr, TRUE, mutexName));
    if (GetLastError() == ERROR_ALREADY_EXISTS) {
        return 1;
    }
    // The management software conflicts on Windows NT 4 only.
    if (COSVersion().GetOSCode() == osWINNT4 && IsTaviskActive() != 0) {
        std::string message = LangString(kStringCloseManagementSoftware);
        MessageBoxA(nullptr, message.c_str(), "Morvix", MB_ICONERROR);
        Trace(std::move(message));
        return 1;
    }
    return 0;
}

int IsTaviskActive()
{
    Trace("Entering - IsTaviskActive");
    const std::string name = IsNT4TerminalServer() ? R"(Global\TaviskMutex)" : "TaviskMutex";
    const HANDLE mutex = CreateMutexA(nullptr, TRUE, name.c_str());
    if (GetLastError() == ERROR_ALREADY_EXISTS) {
        // The handle is not closed: the run stops here anyway.
        return 1;
    }
    if (mutex != nullptr) {
        CloseHandle(mutex);
    }
    return 0;
}
