#include "WindowWatch.h"

// tlhelp32.h needs windows.h first.
#include <tlhelp32.h>

#include <array>
#include <stdexcept>

#include "Bundle.h"
#include "Handles.h"
#include "ScratchDirectory.h"
#include "Screenshot.h"

namespace {
BOOL CALLBACK Collect(HWND window, LPARAM list)
{
    reinterpret_cast<std::vector<HWND>*>(list)->push_back(window);
    return TRUE;
}

std::map<HWND, DWORD> VisibleWindows()
{
    std::vector<HWND> all;
    EnumWindows(Collect, reinterpret_cast<LPARAM>(&all));
    std::map<HWND, DWORD> visible;
    for (HWND window : all) {
        RECT place{};
        if (IsWindowVisible(window) != FALSE && GetWindowRect(window, &place) != FALSE && place.right > place.left &&
            place.bottom > place.top) {
            GetWindowThreadProcessId(window, &visible[window]);
        }
    }
    return visible;
}

std::string ProgramOf(DWORD processId)
{
    const UniqueFile processes(CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0));
    PROCESSENTRY32 entry{};
    entry.dwSize = sizeof(entry);
    for (BOOL more = Process32First(processes.Get(), &entry); more != FALSE;
         more = Process32Next(processes.Get(), &entry)) {
        if (entry.th32ProcessID == processId) {
            return entry.szExeFile;
        }
    }
    return "process " + std::to_string(processId);
}
} // namespace

std::string SeenWindow::Description() const
{
    return "[" + title + "] of class " + className + " of " + program;
}

WindowWatch::WindowWatch() : m_before(VisibleWindows()) {}

std::vector<SeenWindow> WindowWatch::New() const
{
    std::vector<SeenWindow> found;
    for (const auto& [window, processId] : VisibleWindows()) {
        const auto before = m_before.find(window);
        if (before != m_before.end() && before->second == processId) {
            continue;
        }
        std::array<char, 256> title{};
        std::array<char, 64> className{};
        // Of a window of another process this reads the text that the system keeps, without asking the process.
        GetWindowTextA(window, title.data(), static_cast<int>(title.size()));
        GetClassNameA(window, className.data(), static_cast<int>(className.size()));
        found.push_back({window, ProgramOf(processId), className.data(), title.data()});
    }
    return found;
}

void LeavePicture(const std::string& name)
{
    const std::string picture = Screenshot();
    if (picture.empty()) {
        throw std::runtime_error("the screen cannot be read");
    }
    WriteFileBytes(ResultFile(name + ".bmp"), picture);
}
