#pragma once

#include <windows.h>

#include <cstdint>

/// Counts the calls that a module makes of a platform function, from the object's making to its end. The calls go
/// through; only the module's import table points to a counter in between. One object at a time for one function.
class CallCount
{
public:
    /// @param function  Name of the function as the module imports it.
    /// @param module    Whose calls are counted; null: this program's. Throws std::runtime_error when it does not
    ///                  import the function.
    explicit CallCount(const char* function, HMODULE module = nullptr);
    ~CallCount();
    CallCount(const CallCount&) = delete;
    CallCount& operator=(const CallCount&) = delete;

    [[nodiscard]] uint64_t Calls() const;

private:
    struct Counter;
    Counter* m_counter = nullptr;
    void** m_import = nullptr;
};
