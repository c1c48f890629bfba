#include "RestartWatch.h"

// The header below needs windows.h first.
#include <tlhelp32.h>

#include <stdexcept>
#include <string>

namespace {
constexpr char kClass[] = "MorvixRestartWatch";
constexpr DWORD kLongestWait = 20000;
constexpr DWORD kPollMilliseconds = 10;

// A restart is requested by starting this system program, which asks every window whether the session may end.
bool RestartIsUnderWay()
{
    const UniqueHandle snapshot(CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0));
    PROCESSENTRY32 process{};
    process.dwSize = sizeof(process);
    for (BOOL more = Process32First(snapshot.get(), &process); more != FALSE;
         more = Process32Next(snapshot.get(), &process)) {
        if (lstrcmpiA(process.szExeFile, "wineboot.exe") == 0) {
            return true;
        }
    }
    return false;
}

bool WaitUntilNoRestartIsUnderWay()
{
    for (const DWORD start = GetTickCount(); RestartIsUnderWay(); Sleep(kPollMilliseconds)) {
        if (GetTickCount() - start > kLongestWait) {
            return false;
        }
    }
    return true;
}
} // namespace

RestartWatch::RestartWatch() : m_ready(CreateEventA(nullptr, TRUE, FALSE, nullptr))
{
    WNDCLASSA windowClass{};
    windowClass.lpfnWndProc = WindowProc;
    windowClass.hInstance = GetModuleHandleA(nullptr);
    windowClass.lpszClassName = kClass;
    if (RegisterClassA(&windowClass) == 0) {
        throw std::runtime_error("cannot watch for restarts: no window class");
    }
    m_thread.reset(CreateThread(nullptr, 0, Watch, this, 0, nullptr));
    WaitForSingleObject(m_ready.get(), kLongestWait);
    if (m_window == nullptr) {
        throw std::runtime_error("cannot watch for restarts: no window");
    }
}

RestartWatch::~RestartWatch()
{
    // The session must not end because the refusing window is gone.
    WaitUntilNoRestartIsUnderWay();
    PostMessageA(m_window, WM_CLOSE, 0, 0);
    WaitForSingleObject(m_thread.get(), kLongestWait);
    UnregisterClassA(kClass, GetModuleHandleA(nullptr));
}

std::size_t RestartWatch::Refused() const
{
    if (!WaitUntilNoRestartIsUnderWay()) {
        throw std::runtime_error("a restart is under way and does not end");
    }
    return m_refused;
}

bool RestartWatch::WaitForRefusal() const
{
    for (const DWORD start = GetTickCount(); GetTickCount() - start < kLongestWait; Sleep(kPollMilliseconds)) {
        if (m_refused != 0) {
            return Refused() != 0;
        }
    }
    return false;
}

// The window is never shown, but the system asks it.
DWORD WINAPI RestartWatch::Watch(void* watch)
{
    auto& self = *static_cast<RestartWatch*>(watch);
    HWND window =
        CreateWindowA(kClass, "", WS_OVERLAPPED, 0, 0, 0, 0, nullptr, nullptr, GetModuleHandleA(nullptr), nullptr);
    SetWindowLongPtrA(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(watch));
    self.m_window = window;
    SetEvent(self.m_ready.get());
    MSG message{};
    while (window != nullptr && GetMessageA(&message, nullptr, 0, 0) > 0) {
        DispatchMessageA(&message);
    }
    return 0;
}

LRESULT CALLBACK RestartWatch::WindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    auto* self = reinterpret_cast<RestartWatch*>(GetWindowLongPtrA(window, GWLP_USERDATA));
    if (message == WM_QUERYENDSESSION && self != nullptr) {
        ++self->m_refused;
        return FALSE;
    }
    if (message == WM_DESTROY) {
        PostQuitMessage(0);
        return 0;
    }
    return DefWindowProcA(window, message, wParam, lParam);
}
