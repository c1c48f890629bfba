#include "ProgramWindows.h"

#include <array>
#include <functional>
#include <stdexcept>

namespace {
constexpr DWORD kPollMilliseconds = 20;
constexpr DWORD kMessageLimit = 10000;

// The condition is what ends the wait; the limit only turns a hang into a failure.
bool WaitUntil(const std::function<bool()>& condition)
{
    const DWORD start = GetTickCount();
    while (!condition()) {
        if (GetTickCount() - start > ProgramRun::kLimit) {
            return false;
        }
        Sleep(kPollMilliseconds);
    }
    return true;
}

std::string TextOfWindow(HWND window)
{
    std::array<char, 1024> text{};
    DWORD_PTR ignored = 0;
    SendMessageTimeoutA(window, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()), SMTO_ABORTIFHUNG,
                        kMessageLimit, &ignored);
    return text.data();
}

std::string ClassOf(HWND window)
{
    std::array<char, 64> name{};
    GetClassNameA(window, name.data(), static_cast<int>(name.size()));
    return name.data();
}

// Both enumerations only collect: a callback must not throw or send messages.
BOOL CALLBACK Collect(HWND window, LPARAM list)
{
    reinterpret_cast<std::vector<HWND>*>(list)->push_back(window);
    return TRUE;
}

std::vector<HWND> WindowsOf(DWORD processId)
{
    std::vector<HWND> all;
    EnumWindows(Collect, reinterpret_cast<LPARAM>(&all));
    std::erase_if(all, [&](HWND window) {
        DWORD owner = 0;
        GetWindowThreadProcessId(window, &owner);
        return owner != processId;
    });
    return all;
}

// The box's text is its one static control that is not the icon.
std::string BoxText(HWND box)
{
    std::vector<HWND> children;
    EnumChildWindows(box, Collect, reinterpret_cast<LPARAM>(&children));
    for (HWND child : children) {
        if (ClassOf(child) == "Static" && (GetWindowLongA(child, GWL_STYLE) & SS_TYPEMASK) != SS_ICON) {
            return TextOfWindow(child);
        }
    }
    throw std::runtime_error("the message box has no text control");
}
} // namespace

std::vector<HWND> VisibleWindowsOf(const ProgramRun& run)
{
    std::vector<HWND> windows = WindowsOf(run.ProcessId());
    std::erase_if(windows, [](HWND window) { return IsWindowVisible(window) == FALSE; });
    return windows;
}

MessageBoxSeen WaitForMessageBox(const ProgramRun& run)
{
    HWND box = nullptr;
    const bool seen = WaitUntil([&] {
        for (HWND window : WindowsOf(run.ProcessId())) {
            if (ClassOf(window) == "#32770" && IsWindowVisible(window) != FALSE) {
                box = window;
            }
        }
        return box != nullptr || !run.StillRuns();
    });
    if (!seen || box == nullptr) {
        throw std::runtime_error("the program showed no message box");
    }
    return {box, GetWindow(box, GW_OWNER), TextOfWindow(box), BoxText(box)};
}

void PressInBox(const MessageBoxSeen& box, int button)
{
    PostMessageA(box.window, WM_COMMAND, MAKEWPARAM(button, BN_CLICKED),
                 reinterpret_cast<LPARAM>(GetDlgItem(box.window, button)));
    if (!WaitUntil([&] { return IsWindow(box.window) == FALSE; })) {
        throw std::runtime_error("the message box stays");
    }
}

ProgressWindow::ProgressWindow(const ProgramRun& run)
{
    const bool found = WaitUntil([&] {
        for (HWND window : WindowsOf(run.ProcessId())) {
            if (GetDlgItem(window, kStatus) != nullptr) {
                m_window = window;
            }
        }
        return m_window != nullptr || !run.StillRuns();
    });
    if (!found || m_window == nullptr) {
        throw std::runtime_error("the program made no progress dialog");
    }
}

std::string ProgressWindow::Title() const
{
    return TextOfWindow(m_window);
}

std::string ProgressWindow::TextOf(int control) const
{
    return TextOfWindow(GetDlgItem(m_window, control));
}

bool ProgressWindow::Offers(int control) const
{
    HWND window = GetDlgItem(m_window, control);
    return window != nullptr && IsWindowVisible(window) != FALSE && IsWindowEnabled(window) != FALSE;
}

void ProgressWindow::WaitUntilOffered(int control) const
{
    if (!WaitUntil([&] { return Offers(control); })) {
        throw std::runtime_error("the dialog does not offer control " + std::to_string(control) + "; it says [" +
                                 TextOf(kStatus) + "]");
    }
}

void ProgressWindow::WaitUntilVisible() const
{
    if (!WaitUntil([&] { return Visible(); })) {
        throw std::runtime_error("the dialog stays hidden");
    }
}

void ProgressWindow::WaitUntilGone(int control) const
{
    if (!WaitUntil([&] { return IsWindowVisible(GetDlgItem(m_window, control)) == FALSE; })) {
        throw std::runtime_error("control " + std::to_string(control) + " stays");
    }
}

void ProgressWindow::WaitUntilFocused(int control) const
{
    const bool focused = WaitUntil([&] {
        GUITHREADINFO info{};
        info.cbSize = sizeof(info);
        return GetGUIThreadInfo(GetWindowThreadProcessId(m_window, nullptr), &info) != FALSE &&
               info.hwndFocus != nullptr && info.hwndFocus == GetDlgItem(m_window, control);
    });
    if (!focused) {
        throw std::runtime_error("control " + std::to_string(control) + " does not get the focus");
    }
}

void ProgressWindow::WaitForStatus(const std::string& text) const
{
    if (!WaitUntil([&] { return TextOf(kStatus) == text; })) {
        throw std::runtime_error("the dialog says [" + TextOf(kStatus) + "], not [" + text + "]");
    }
}

void ProgressWindow::Press(int control) const
{
    PostMessageA(GetDlgItem(m_window, control), BM_CLICK, 0, 0);
}
