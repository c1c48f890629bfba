#pragma once

#include <windows.h>

#include <map>
#include <string>
#include <vector>

/// A window as somebody at the machine sees it.
struct SeenWindow
{
    HWND window = nullptr;
    std::string program; ///< file name of its process
    std::string className;
    std::string title;
    [[nodiscard]] std::string Description() const;
};

/// The visible top-level windows of all processes of this session that have come since the object was made.
class WindowWatch
{
public:
    WindowWatch();

    /// @return those that are there now.
    [[nodiscard]] std::vector<SeenWindow> New() const;

private:
    std::map<HWND, DWORD> m_before; ///< with their processes: a number is used again when a window is gone
};

/// Leaves a picture of the whole screen for the report. Throws std::runtime_error when there is none.
/// @param name  File name without its extension.
void LeavePicture(const std::string& name);
