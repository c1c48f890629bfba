#include <windows.h>
// These need windows.h first.
#include <commctrl.h>
#include <objbase.h>
#include <oleauto.h>
#include <setupapi.h>

// A GUI program that does nothing, with the installer's system libraries: every program costs at least this much.

namespace {
/// Imported libraries are loaded even when unused; naming one function imports its library.
const volatile void* const kImports[] = {
    reinterpret_cast<const void*>(&RegCloseKey),       reinterpret_cast<const void*>(&InitCommonControlsEx),
    reinterpret_cast<const void*>(&CoInitializeEx),    reinterpret_cast<const void*>(&SysFreeString),
    reinterpret_cast<const void*>(&SetupOpenInfFileA), reinterpret_cast<const void*>(&GetFileVersionInfoSizeA),
};
constexpr const char* kLoadedLater[] = {"srclient.dll", "cfgmgr32.dll"};
} // namespace

int WINAPI WinMain(HINSTANCE instance, HINSTANCE, LPSTR, int)
{
    for (const char* const library : kLoadedLater) {
        LoadLibraryA(library);
    }
    const HWND window =
        CreateWindowA("STATIC", "empty", WS_OVERLAPPEDWINDOW, 0, 0, 100, 100, nullptr, nullptr, instance, nullptr);
    DestroyWindow(window);
    return kImports[0] == nullptr ? 1 : 0;
}
