// Stands in for MorvixRes.dll. It takes the window class "Morvix" for its own module as soon as it is loaded, so that
// the program cannot register that class itself. From then on the program's message boxes tell their type.

#include <windows.h>

#include "ImportSlot.h"
#include "Journal.h"

namespace {
int WINAPI ShowBox(HWND owner, LPCSTR text, LPCSTR caption, UINT type)
{
    WriteJournal("box of type " + std::to_string(type));
    return MessageBoxA(owner, text, caption, type);
}
} // namespace

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, void*)
{
    if (reason == DLL_PROCESS_ATTACH) {
        WNDCLASSA windowClass = {};
        windowClass.lpfnWndProc = DefWindowProcA;
        windowClass.hInstance = instance;
        windowClass.lpszClassName = "Morvix";
        WriteJournal(RegisterClassA(&windowClass) != 0 ? "class taken" : "class not taken " + Hex(GetLastError()));
        ImportSlot("MessageBoxA").Redirect(reinterpret_cast<void*>(ShowBox));
    }
    return TRUE;
}
