// Stands for MorvixRes.dll. It takes the window class "Morvix" for its own module as soon as it is loaded, so that the
// program cannot register that class itself.

#include <windows.h>

#include "Journal.h"

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, void*)
{
    if (reason == DLL_PROCESS_ATTACH) {
        WNDCLASSA windowClass = {};
        windowClass.lpfnWndProc = DefWindowProcA;
        windowClass.hInstance = instance;
        windowClass.lpszClassName = "Morvix";
        WriteJournal(RegisterClassA(&windowClass) != 0 ? "class taken" : "class not taken " + Hex(GetLastError()));
    }
    return TRUE;
}
