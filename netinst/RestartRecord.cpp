#include "RestartRecord.h"

#include <windows.h>

#include "Handles.h"
#include "NetInst.h"

bool RecordRestartNeeded() noexcept
{
    HKEY opened = nullptr;
    if (RegCreateKeyExA(HKEY_LOCAL_MACHINE, kNetInstKey, 0, nullptr, REG_OPTION_NON_VOLATILE, KEY_SET_VALUE, nullptr,
                        &opened, nullptr) != ERROR_SUCCESS) {
        return false;
    }
    const UniqueRegKey key(opened);
    constexpr DWORD kNeeded = 1;
    return RegSetValueExA(key.get(), kNetInstRestartValue, 0, REG_DWORD, reinterpret_cast<const BYTE*>(&kNeeded),
                          sizeof(kNeeded)) == ERROR_SUCCESS;
}

void ForgetRestartNeeded() noexcept
{
    HKEY opened = nullptr;
    if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, kNetInstKey, 0, KEY_SET_VALUE, &opened) == ERROR_SUCCESS) {
        const UniqueRegKey key(opened);
        RegDeleteValueA(key.get(), kNetInstRestartValue);
    }
}
