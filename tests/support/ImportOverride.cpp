#include "ImportOverride.h"

#include <stdexcept>

void** ImportSlot(const std::string& function, HMODULE module)
{
    auto* const base = reinterpret_cast<BYTE*>(module == nullptr ? GetModuleHandleA(nullptr) : module);
    const auto* dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
    const auto* headers = reinterpret_cast<const IMAGE_NT_HEADERS*>(base + dos->e_lfanew);
    const IMAGE_DATA_DIRECTORY& imports = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    for (const auto* library = reinterpret_cast<const IMAGE_IMPORT_DESCRIPTOR*>(base + imports.VirtualAddress);
         library->Name != 0; ++library) {
        const auto* name = reinterpret_cast<const IMAGE_THUNK_DATA*>(base + library->OriginalFirstThunk);
        auto* address = reinterpret_cast<IMAGE_THUNK_DATA*>(base + library->FirstThunk);
        for (; name->u1.AddressOfData != 0; ++name, ++address) {
            if (!IMAGE_SNAP_BY_ORDINAL(name->u1.Ordinal) &&
                function == reinterpret_cast<const IMAGE_IMPORT_BY_NAME*>(base + name->u1.AddressOfData)->Name) {
                return reinterpret_cast<void**>(&address->u1.Function);
            }
        }
    }
    throw std::runtime_error("the module does not import " + function);
}

ImportOverride::ImportOverride(const std::string& function, void* replacement, HMODULE module)
    : m_slot(ImportSlot(function, module)), m_before(*m_slot)
{
    Write(replacement);
}

ImportOverride::~ImportOverride()
{
    Write(m_before);
}

void ImportOverride::Write(void* address) const
{
    DWORD before = 0;
    VirtualProtect(m_slot, sizeof(*m_slot), PAGE_READWRITE, &before);
    *m_slot = address;
    VirtualProtect(m_slot, sizeof(*m_slot), before, &before);
}
