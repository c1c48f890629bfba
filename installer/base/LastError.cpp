#include "LastError.h"

#include <windows.h>

#include "Handles.h"
#include "Trace.h"

void PrintGetLastErrorMessage()
{
    const DWORD error = GetLastError();
    Trace("Entering - PrintGetLastErrorMessage");
    char* text = nullptr;
    // 0x400 is MAKELANGID(LANG_NEUTRAL, SUBLANG_DEFAULT): the user's own language.
    FormatMessageA(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
                   error, 0x400, reinterpret_cast<char*>(&text), 0, nullptr);
    const UniqueLocalText owner(text);
    Trace(text == nullptr ? "" : text);
}
