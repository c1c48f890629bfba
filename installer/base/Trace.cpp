#include "Trace.h"

#include <windows.h>

#include "Handles.h"
#include "RecordNames.h"

void Trace(std::string&& message)
{
    const std::string_view whole = message;
    TracePieces({&whole, 1});
    message.clear();
}

void TracePieces(std::span<const std::string_view> pieces)
{
    HKEY key = nullptr;
    if (RegOpenKeyA(HKEY_LOCAL_MACHINE, kTraceSwitchKey, &key) != ERROR_SUCCESS) {
        return;
    }
    const UniqueRegKey owner(key);
    std::string line = "Morvix: ";
    for (const std::string_view piece : pieces) {
        line += piece;
    }
    OutputDebugStringA(line.c_str());
}
