#pragma once

#include "Handles.h"

/// The machine-wide lock around calls into the FCoE interface library that can change its state: the mutex
/// "Global\CHBAAPINTMUT". An object creates or opens it for one operation, and releases and closes it at the end.
class CHBAAPIMutex
{
public:
    CHBAAPIMutex();
    ~CHBAAPIMutex();
    CHBAAPIMutex(const CHBAAPIMutex&) = delete;
    CHBAAPIMutex& operator=(const CHBAAPIMutex&) = delete;

    /// Waits at most 10000 ms. While the object holds the mutex, it returns true at once.
    /// @return true when this thread acquired the mutex. False when it could not be created or acquired, and also when
    ///         its last holder ended without releasing it: the library may be in the middle of a change. The next
    ///         operation acquires it normally.
    [[nodiscard]] bool Lock();

    /// Releases the mutex; does nothing when it is not held.
    void Unlock();

private:
    UniqueHandle m_mutex;
    bool m_held = false;
};
