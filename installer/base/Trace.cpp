#include "Trace.h"

#include <windows.h>

#include "Handles.h"

void Trace(std::string&& message)
{
    HKEY key = nullptr;
    if (RegOpenKeyA(HKEY_LOCAL_MACHINE, R"(SOFTWARE\Norda\Basedrivers\Debug)", &key) == ERROR_SUCCESS) {
        const UniqueRegKey owner(key);
        OutputDebugStringA(("Morvix: " + message).c_str());
    }
    message.clear();
}
