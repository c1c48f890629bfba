#include "CallCount.h"

#include <array>
#include <new>

/// Code and data lie on one page, so that the code reaches the data by its distance.
struct CallCount::Counter
{
    // lock inc qword ptr [rip + 8]; jmp qword ptr [rip + 10]: `calls` and `original` below. No register is changed.
    std::array<uint8_t, 16> code{0xF0, 0x48, 0xFF, 0x05, 8, 0, 0, 0, 0xFF, 0x25, 10, 0, 0, 0, 0x90, 0x90};
    volatile uint64_t calls = 0;
    void* original = nullptr;
};

// The page stays when the object goes: another thread may be on its way through it.
CallCount::Counter* CallCount::MakeCounter(void* original)
{
    void* const page = VirtualAlloc(nullptr, sizeof(Counter), MEM_COMMIT | MEM_RESERVE, PAGE_EXECUTE_READWRITE);
    if (page == nullptr) {
        throw std::bad_alloc();
    }
    auto* const counter = new (page) Counter;
    counter->original = original;
    return counter;
}

CallCount::CallCount(const std::string& function, HMODULE module)
    : m_counter(MakeCounter(*ImportSlot(function, module))), m_override(function, m_counter->code.data(), module)
{
}

uint64_t CallCount::Calls() const
{
    return m_counter->calls;
}
