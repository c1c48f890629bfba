#pragma once

#include <windows.h>

#include <cstdint>
#include <string>

#include "ImportOverride.h"

/// Counts the calls that a module makes of a platform function, from the object's making to its end. The calls go
/// through to where they went before.
class CallCount
{
public:
    /// @param function  Name of the function as the module imports it.
    /// @param module    Whose calls are counted; null: this program's. Throws std::runtime_error when it does not
    ///                  import the function.
    explicit CallCount(const std::string& function, HMODULE module = nullptr);

    [[nodiscard]] uint64_t Calls() const;

private:
    struct Counter;
    static Counter* MakeCounter(void* original);

    Counter* m_counter;
    ImportOverride m_override;
};
