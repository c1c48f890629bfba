#pragma once

#include <string>

#include "ImportSlot.h"

/// Redirects a module's own calls of an imported function to another one during the object's lifetime, to simulate
/// platform states that a test cannot create. Calls made inside other libraries are not touched.
class ImportOverride
{
public:
    /// @param function     Name of the imported function.
    /// @param replacement  Address of a function of the same type.
    /// @param module       The calling module, which must outlive the object; null for this program.
    /// Throws std::runtime_error when the module does not import the function.
    ImportOverride(const std::string& function, void* replacement, HMODULE module = nullptr)
        : m_slot(function, module), m_before(m_slot.Target())
    {
        m_slot.Redirect(replacement);
    }
    ~ImportOverride() { m_slot.Redirect(m_before); }
    ImportOverride(const ImportOverride&) = delete;
    ImportOverride& operator=(const ImportOverride&) = delete;

private:
    ImportSlot m_slot;
    void* m_before;
};

/// The replacement of a function that lets calls through.
/// @param before    Receives the current target of the program's calls of `function`, for the replacement.
/// @param function  The function as the program calls it; that it is named here makes the program import it.
/// @return the replacement's address, for an ImportOverride.
template <class Function>
[[nodiscard]] void* InPlaceOf(Function& before, Function function, Function replacement)
{
    before = function;
    return reinterpret_cast<void*>(replacement);
}
