// The library that the program under test is linked to: when it is loaded, before any code of the program runs, every
// function of the program's import table is replaced by a gate that counts it and can make it fail.

#include <windows.h>

#include "ImportHooks.h"
#include "Journal.h"

/// What the program is linked to, so that the library is loaded with it.
extern "C" __declspec(dllexport) int FaultHooksAreHere()
{
    return 1;
}

extern "C" BOOL WINAPI DllMain(HINSTANCE /*library*/, DWORD reason, LPVOID /*reserved*/)
{
    if (reason == DLL_PROCESS_ATTACH && Channel() != nullptr) {
        static_cast<void>(CurrentCallThread());
        HookImports();
    }
    return TRUE;
}
