#pragma once

#include <windows.h>

#include <atomic>
#include <cstddef>

#include "Handles.h"

/// Refuses every restart that a program asks the system for during the object's life, as a program with unsaved work
/// may, so that the session continues and the test can see that the restart was really requested.
class RestartWatch
{
public:
    /// Throws std::runtime_error when it cannot watch.
    RestartWatch();
    ~RestartWatch();
    RestartWatch(const RestartWatch&) = delete;
    RestartWatch& operator=(const RestartWatch&) = delete;

    /// @return how many restarts have been refused, once no restart is in progress. Throws std::runtime_error when one
    ///         does not finish.
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
