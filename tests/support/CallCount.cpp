#include "CallCount.h"

#include <array>
#include <bit>
#include <cstring>
#include <new>
#include <stdexcept>
#include <string>

/// Code and data lie on one page, so that the code reaches the data by its distance.
struct CallCount::Counter
{
    // lock inc qword ptr [rip + 8]; jmp qword ptr [rip + 10]: `calls` and `original` below. No register is changed.
    std::array<uint8_t, 16> code{0xF0, 0x48, 0xFF, 0x05, 8, 0, 0, 0, 0xFF, 0x25, 10, 0, 0, 0, 0x90, 0x90};
    volatile uint64_t calls = 0;
    void* original = nullptr;
};

namespace {
template <class Type>
Type* At(HMODULE module, DWORD offset)
{
    return std::bit_cast<Type*>(std::bit_cast<uint8_t*>(module) + offset);
}

/// @return the place of the module's import table that holds the function's address; null when there is none.
void** FindImport(HMODULE module, const char* function)
{
    const auto* const dos = At<IMAGE_DOS_HEADER>(module, 0);
    const auto* const headers = At<IMAGE_NT_HEADERS>(module, static_cast<DWORD>(dos->e_lfanew));
    const DWORD imports = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress;
    for (const auto* library = At<IMAGE_IMPORT_DESCRIPTOR>(module, imports); library->Name != 0; ++library) {
        const auto* name = At<IMAGE_THUNK_DATA>(module, library->OriginalFirstThunk);
        auto* address = At<IMAGE_THUNK_DATA>(module, library->FirstThunk);
        for (; name->u1.AddressOfData != 0; ++name, ++address) {
            if (IMAGE_SNAP_BY_ORDINAL(name->u1.Ordinal)) {
                continue;
            }
            const auto* const entry = At<IMAGE_IMPORT_BY_NAME>(module, static_cast<DWORD>(name->u1.AddressOfData));
            if (std::strcmp(std::bit_cast<const char*>(&entry->Name[0]), function) == 0) {
                return std::bit_cast<void**>(&address->u1.Function);
            }
        }
    }
    return nullptr;
}

void Write(void** import, void* address)
{
    DWORD before = 0;
    VirtualProtect(import, sizeof(*import), PAGE_READWRITE, &before);
    *import = address;
    VirtualProtect(import, sizeof(*import), before, &before);
}
} // namespace

CallCount::CallCount(const char* function, HMODULE module)
    : m_import(FindImport(module == nullptr ? GetModuleHandleA(nullptr) : module, function))
{
    void* const page = VirtualAlloc(nullptr, sizeof(Counter), MEM_COMMIT | MEM_RESERVE, PAGE_EXECUTE_READWRITE);
    if (m_import == nullptr || page == nullptr) {
        throw std::runtime_error(std::string("the module does not import ") + function);
    }
    m_counter = new (page) Counter;
    m_counter->original = *m_import;
    Write(m_import, m_counter->code.data());
}

CallCount::~CallCount()
{
    // The page stays: another thread may be on its way through it.
    Write(m_import, m_counter->original);
}

uint64_t CallCount::Calls() const
{
    return m_counter->calls;
}
