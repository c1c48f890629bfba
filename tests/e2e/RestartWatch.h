#pragma once

#include <windows.h>

#include <atomic>
#include <cstddef>

#include "Handles.h"

/// Refuses every restart that a program asks the system for during the object's life, as a program with unsaved work
/// may, so that the session goes on and the test can tell that the restart really was asked for.
class RestartWatch
{
public:
    /// Throws std::runtime_error when it cannot watch.
    RestartWatch();
    ~RestartWatch();
    RestartWatch(const RestartWatch&) = delete;
    RestartWatch& operator=(const RestartWatch&) = delete;

    /// @return how many restarts have been refused, once no restart is under way any more. Throws std::runtime_error
    ///         when one that is under way does not come to its end.
    [[nodiscard]] std::size_t Refused() const;

    /// Waits until a restart has been refused.
    /// @return false when none is asked for within 20 seconds.
    [[nodiscard]] bool WaitForRefusal() const;

private:
    static DWORD WINAPI Watch(void* watch);
    static LRESULT CALLBACK WindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

    std::atomic<std::size_t> m_refused = 0;
    std::atomic<HWND> m_window = nullptr;
    UniqueHandle m_ready;
    UniqueHandle m_thread;
};
