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

CallCount::CallCount(const char* function, HMODULE module) : m_slot(function, module)
{
    void* const page = VirtualAlloc(nullptr, sizeof(Counter), MEM_COMMIT | MEM_RESERVE, PAGE_EXECUTE_READWRITE);
    if (page == nullptr) {
        throw std::bad_alloc();
    }
    m_counter = new (page) Counter;
    m_counter->original = m_slot.Target();
    m_slot.Redirect(m_counter->code.data());
}

CallCount::~CallCount()
{
    // The page stays: another thread may be on its way through it.
    m_slot.Redirect(m_counter->original);
}

uint64_t CallCount::Calls() const
{
    return m_counter->calls;
}
