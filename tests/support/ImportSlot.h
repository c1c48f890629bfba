#pragma once

#include <windows.h>

#include <string>

/// The place in a module's import table through which its own calls of a function go.
class ImportSlot
{
public:
    /// @param function  Name of the imported function.
    /// @param module    The calling module; null for this program.
    /// Throws std::runtime_error when the module does not import the function.
    explicit ImportSlot(const std::string& function, HMODULE module = nullptr);

    [[nodiscard]] void* Target() const { return *m_slot; }
    void Redirect(void* address) const;

private:
    void** m_slot;
};
