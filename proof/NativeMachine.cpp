#include "NativeMachine.h"

#include <windows.h>

#include "EntryPoints.h"

std::optional<uint16_t> NativeMachine()
{
    using MachineFn = BOOL(WINAPI*)(HANDLE, USHORT*, USHORT*);
    const auto ask = FindEntry<MachineFn>(GetModuleHandleA("kernel32.dll"), "IsWow64Process2");
    USHORT process = 0;
    USHORT native = 0;
    if (ask == nullptr || ask(GetCurrentProcess(), &process, &native) == FALSE) {
        return std::nullopt;
    }
    return native;
}
