#include "InstallerWindow.h"

#include <stdexcept>

namespace {
constexpr char kClass[] = "MsiDialogCloseClass";
constexpr DWORD kLimit = 10000;

LRESULT CALLBACK WindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_DESTROY) {
        PostQuitMessage(0);
    }
    return DefWindowProcA(window, message, wParam, lParam);
}
} // namespace

InstallerWindow::InstallerWindow() : m_ready(CreateEventA(nullptr, TRUE, FALSE, nullptr))
{
    WNDCLASSA windowClass{};
    windowClass.lpfnWndProc = WindowProc;
    windowClass.hInstance = GetModuleHandleA(nullptr);
    windowClass.lpszClassName = kClass;
    if (RegisterClassA(&windowClass) == 0) {
        throw std::runtime_error("cannot make an installer window: no window class");
    }
    m_thread.reset(CreateThread(nullptr, 0, Pump, this, 0, nullptr));
    WaitForSingleObject(m_ready.get(), kLimit);
    if (m_window == nullptr) {
        throw std::runtime_error("cannot make an installer window");
    }
}

InstallerWindow::~InstallerWindow()
{
    PostMessageA(m_window, WM_CLOSE, 0, 0);
    WaitForSingleObject(m_thread.get(), kLimit);
    UnregisterClassA(kClass, GetModuleHandleA(nullptr));
}

DWORD WINAPI InstallerWindow::Pump(void* self)
{
    auto& installer = *static_cast<InstallerWindow*>(self);
    const HWND window =
        CreateWindowA(kClass, "", WS_OVERLAPPED, 0, 0, 0, 0, nullptr, nullptr, GetModuleHandleA(nullptr), nullptr);
    installer.m_window = window;
    SetEvent(installer.m_ready.get());
    MSG message{};
    while (window != nullptr && GetMessageA(&message, nullptr, 0, 0) > 0) {
        DispatchMessageA(&message);
    }
    return 0;
}
