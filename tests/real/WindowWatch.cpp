#include "WindowWatch.h"

// tlhelp32.h needs windows.h first.
#include <tlhelp32.h>

#include <array>
#include <cstring>
#include <memory>
#include <stdexcept>

#include "Bundle.h"
#include "Handles.h"
#include "ScratchDirectory.h"

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

struct ScreenCloser
{
    void operator()(HDC screen) const noexcept { ReleaseDC(nullptr, screen); }
};
using UniqueScreen = std::unique_ptr<std::remove_pointer_t<HDC>, ScreenCloser>;

struct MemoryDcCloser
{
    void operator()(HDC dc) const noexcept { DeleteDC(dc); }
};
using UniqueMemoryDc = std::unique_ptr<std::remove_pointer_t<HDC>, MemoryDcCloser>;

struct BitmapCloser
{
    void operator()(HBITMAP bitmap) const noexcept { DeleteObject(bitmap); }
};
using UniqueBitmap = std::unique_ptr<std::remove_pointer_t<HBITMAP>, BitmapCloser>;

template <class Header>
std::string BytesOf(const Header& header)
{
    std::string bytes(sizeof(header), '\0');
    std::memcpy(bytes.data(), &header, sizeof(header));
    return bytes;
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
    const int left = GetSystemMetrics(SM_XVIRTUALSCREEN);
    const int top = GetSystemMetrics(SM_YVIRTUALSCREEN);
    const int width = GetSystemMetrics(SM_CXVIRTUALSCREEN);
    const int height = GetSystemMetrics(SM_CYVIRTUALSCREEN);
    const UniqueScreen screen(GetDC(nullptr));
    const UniqueMemoryDc memory(CreateCompatibleDC(screen.get()));
    const UniqueBitmap bitmap(CreateCompatibleBitmap(screen.get(), width, height));
    const HGDIOBJ bitmapBefore = SelectObject(memory.get(), bitmap.get());
    BITMAPINFOHEADER info{};
    info.biSize = sizeof(info);
    info.biWidth = width;
    info.biHeight = height;
    info.biPlanes = 1;
    info.biBitCount = 24;
    // Each row of points ends at a multiple of four bytes.
    std::string points((static_cast<std::size_t>(width) * 3 + 3) / 4 * 4 * static_cast<std::size_t>(height), '\0');
    const BOOL copied = BitBlt(memory.get(), 0, 0, width, height, screen.get(), left, top, SRCCOPY);
    // A bitmap is read while it is selected nowhere.
    SelectObject(memory.get(), bitmapBefore);
    if (copied == FALSE || GetDIBits(screen.get(), bitmap.get(), 0, static_cast<UINT>(height), points.data(),
                                     reinterpret_cast<BITMAPINFO*>(&info), DIB_RGB_COLORS) == 0) {
        throw std::runtime_error("the screen cannot be read");
    }
    BITMAPFILEHEADER file{};
    file.bfType = 0x4D42;
    file.bfOffBits = sizeof(file) + sizeof(info);
    file.bfSize = static_cast<DWORD>(file.bfOffBits + points.size());
    WriteFileBytes(ResultFile(name + ".bmp"), BytesOf(file) + BytesOf(info) + points);
}
