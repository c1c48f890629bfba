#pragma once

#include <windows.h>

#include <string>
#include <vector>

#include "ProgramRun.h"

/// A message box as the user sees it.
struct MessageBoxSeen
{
    HWND window = nullptr;
    HWND owner = nullptr;
    std::string caption;
    std::string text;
};

/// @return the windows of the run that can be seen now.
[[nodiscard]] std::vector<HWND> VisibleWindowsOf(const ProgramRun& run);

/// Waits until the run shows a message box. Throws std::runtime_error when it ends or the limit passes without one.
[[nodiscard]] MessageBoxSeen WaitForMessageBox(const ProgramRun& run);

/// Presses a button of a box, such as IDOK, and waits until the box is gone.
void PressInBox(const MessageBoxSeen& box, int button);

/// The progress dialog of a run.
class ProgressWindow
{
public:
    // The dialog's controls.
    static constexpr int kStatus = 1000, kFinish = 1002, kRestartNow = 1004, kRestartLater = 1007;

    /// Waits until the run has made its dialog, visible or not. Throws std::runtime_error when it does not come.
    explicit ProgressWindow(const ProgramRun& run);

    [[nodiscard]] HWND Window() const { return m_window; }
    [[nodiscard]] bool Visible() const { return IsWindowVisible(m_window) != FALSE; }
    [[nodiscard]] std::string Title() const;
    [[nodiscard]] std::string TextOf(int control) const;
    /// A control that exists, is visible and enabled.
    [[nodiscard]] bool Offers(int control) const;

    /// Waits until control `control` is offered; throws std::runtime_error when that does not happen.
    void WaitUntilOffered(int control) const;
    /// Waits until the dialog can be seen.
    void WaitUntilVisible() const;
    /// Waits until control `control` cannot be seen any more.
    void WaitUntilGone(int control) const;
    /// Waits until the keyboard works on control `control`.
    void WaitUntilFocused(int control) const;
    /// Waits until the status text is `text`; throws std::runtime_error with the text seen last.
    void WaitForStatus(const std::string& text) const;

    /// Presses a button as a user does, without waiting for the program.
    void Press(int control) const;

private:
    HWND m_window = nullptr;
};
