#pragma once

#include "Handles.h"

/// The machine-wide lock around calls into the FCoE interface library that can change its state: the mutex
/// "Global\CHBAAPINTMUT". An object makes or opens it for one operation, and at its end releases and closes it.
class CHBAAPIMutex
{
public:
    CHBAAPIMutex();
    ~CHBAAPIMutex();
    CHBAAPIMutex(const CHBAAPIMutex&) = delete;
    CHBAAPIMutex& operator=(const CHBAAPIMutex&) = delete;

    /// Waits at most 10000 ms. While the object holds the mutex it is not taken once more; the answer is true then.
    /// @return true when this thread got the mutex in the regular way. False when it could not be made or had, and
    ///         also when its last holder ended without releasing it: the library may have been left in the middle of
    ///         a change. The next operation gets it regularly again.
    [[nodiscard]] bool Lock();

    /// Releases the mutex; does nothing when it is not held.
    void Unlock();

private:
    UniqueHandle m_mutex;
    bool m_held = false;
};
