#include "MachineUse.h"

#include <windows.h>

bool RunsInWine()
{
    return GetProcAddress(GetModuleHandleA("ntdll.dll"), "wine_get_version") != nullptr;
}
