#pragma once

#include <windows.h>

#include <atomic>

#include "Handles.h"

/// A window of the class of Windows Installer's user interface, on its own thread, during the object's lifetime.
class InstallerWindow
{
public:
    /// Throws std::runtime_error when the window cannot be made.
    InstallerWindow();
    ~InstallerWindow();
    InstallerWindow(const InstallerWindow&) = delete;
    InstallerWindow& operator=(const InstallerWindow&) = delete;

    [[nodiscard]] HWND Window() const { return m_window; }

private:
    static DWORD WINAPI Pump(void* self);

    std::atomic<HWND> m_window = nullptr;
    UniqueHandle m_ready;
    UniqueHandle m_thread;
};
