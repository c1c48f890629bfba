#pragma once

#include <windows.h>

#include <string>

#include "Handles.h"
#include "LibraryDouble.h"
#include "TestFiles.h"

/// The name by which the tests ask for an adapter.
inline constexpr wchar_t kAdapter[] = LR"(\DEVICE\{0001})";
inline constexpr char kHbaMutexName[] = R"(Global\CHBAAPINTMUT)";

/// An FCoE interface library for this process. Objects that load it must end first.
class HbaLibraryDouble : public LibraryDouble
{
public:
    /// @param missingEntry  The entry point that the library lacks.
    explicit HbaLibraryDouble(const std::string& missingEntry = {})
        : LibraryDouble((missingEntry.empty() ? "nordhapi" : "nordhapi_without_" + missingEntry) + ".dll",
                        "nordhapi.dll")
    {
    }
};

/// @return true while the interface library is loaded in this process.
[[nodiscard]] inline bool IsHbaLibraryLoaded()
{
    return GetModuleHandleA("nordhapi.dll") != nullptr;
}

/// Makes the machine-wide mutex unavailable without waiting: an event has its name.
class NameTakenByAnEvent
{
public:
    NameTakenByAnEvent() : m_event(CreateEventA(nullptr, TRUE, FALSE, kHbaMutexName)) {}

private:
    UniqueHandle m_event;
};
