#pragma once

#include <windows.h>

#include <string>

/// @return the place in a module's import table through which it calls `function`. Throws std::runtime_error when it
///         does not import it.
/// @param module  Null: this program.
[[nodiscard]] void** ImportSlot(const std::string& function, HMODULE module = nullptr);

/// Has this program's own calls of an imported function go to another one for the life of the object, as a platform
/// would answer that is in a state which a test cannot bring about. Calls made inside other libraries are not touched.
class ImportOverride
{
public:
    /// @param function     Name of the imported function.
    /// @param replacement  Address of a function of the same type.
    /// @param module       Whose calls; null: this program's.
    /// Throws std::runtime_error when the module does not import the function.
    ImportOverride(const std::string& function, void* replacement, HMODULE module = nullptr);
    ~ImportOverride();
    ImportOverride(const ImportOverride&) = delete;
    ImportOverride& operator=(const ImportOverride&) = delete;

private:
    void Write(void* address) const;

    void** m_slot = nullptr;
    void* m_before = nullptr;
};
