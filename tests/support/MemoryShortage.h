#pragma once

#include <windows.h>

#include <bit>
#include <cstddef>

#include "ImportOverride.h"

/// During the object's lifetime, this program's requests for that many bytes or more fail. One object at a time.
class MemoryShortage
{
public:
    explicit MemoryShortage(std::size_t bytes) { tooMany = bytes; }
    MemoryShortage(const MemoryShortage&) = delete;
    MemoryShortage& operator=(const MemoryShortage&) = delete;

private:
    static void* __cdecl Allocate(std::size_t bytes)
    {
        // Past the import table.
        static const auto allocate =
            std::bit_cast<void* (*)(std::size_t)>(GetProcAddress(GetModuleHandleA("msvcrt.dll"), "malloc"));
        return bytes >= tooMany ? nullptr : allocate(bytes);
    }

    inline static std::size_t tooMany = 0;
    ImportOverride m_override{"malloc", reinterpret_cast<void*>(Allocate)};
};
