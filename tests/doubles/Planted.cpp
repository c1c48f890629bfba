// A library planted under the name of another one: journals that it was loaded. Under the name of version.dll it
// journals calls of the functions that the program uses, too; the others are the system's (Planted.def), because in
// Wine a library of the system itself links them.

#include <windows.h>

#include <array>
#include <string>

#include "Journal.h"

extern "C" BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, void* /*reserved*/)
{
    if (reason == DLL_PROCESS_ATTACH) {
        std::array<char, MAX_PATH> path{};
        GetModuleFileNameA(module, path.data(), path.size() - 1);
        const std::string whole = path.data();
        WriteJournal("loaded " + whole.substr(whole.rfind('\\') + 1));
    }
    return TRUE;
}

extern "C" DWORD WINAPI GetFileVersionInfoSizeA(LPCSTR /*path*/, LPDWORD /*ignored*/)
{
    WriteJournal("called GetFileVersionInfoSizeA");
    return 0;
}

extern "C" BOOL WINAPI GetFileVersionInfoA(LPCSTR /*path*/, DWORD /*ignored*/, DWORD /*bytes*/, LPVOID /*block*/)
{
    WriteJournal("called GetFileVersionInfoA");
    return FALSE;
}

extern "C" BOOL WINAPI VerQueryValueA(LPCVOID /*block*/, LPCSTR /*name*/, LPVOID* /*record*/, PUINT /*bytes*/)
{
    WriteJournal("called VerQueryValueA");
    return FALSE;
}
