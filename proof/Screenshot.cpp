#include "Screenshot.h"

#include <windows.h>

#include <memory>
#include <type_traits>

namespace {
struct ScreenCloser
{
    void operator()(HDC screen) const noexcept { ReleaseDC(nullptr, screen); }
};
using UniqueScreen = std::unique_ptr<std::remove_pointer_t<HDC>, ScreenCloser>;

struct MemoryCloser
{
    void operator()(HDC memory) const noexcept { DeleteDC(memory); }
};
using UniqueMemory = std::unique_ptr<std::remove_pointer_t<HDC>, MemoryCloser>;

struct BitmapCloser
{
    void operator()(HBITMAP bitmap) const noexcept { DeleteObject(bitmap); }
};
using UniqueBitmap = std::unique_ptr<std::remove_pointer_t<HBITMAP>, BitmapCloser>;

template <class T>
std::string BytesOf(const T& record)
{
    return {reinterpret_cast<const char*>(&record), sizeof(record)};
}
} // namespace

std::string Screenshot()
{
    const int left = GetSystemMetrics(SM_XVIRTUALSCREEN);
    const int top = GetSystemMetrics(SM_YVIRTUALSCREEN);
    const int width = GetSystemMetrics(SM_CXVIRTUALSCREEN);
    const int height = GetSystemMetrics(SM_CYVIRTUALSCREEN);
    const UniqueScreen screen(GetDC(nullptr));
    const UniqueMemory memory(CreateCompatibleDC(screen.get()));
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof(info.bmiHeader);
    info.bmiHeader.biWidth = width;
    info.bmiHeader.biHeight = height;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 24;
    void* bits = nullptr;
    const UniqueBitmap bitmap(CreateDIBSection(screen.get(), &info, DIB_RGB_COLORS, &bits, nullptr, 0));
    if (!screen || !memory || !bitmap || width <= 0 || height <= 0) {
        return {};
    }
    const HGDIOBJ before = SelectObject(memory.get(), bitmap.get());
    const bool copied = BitBlt(memory.get(), 0, 0, width, height, screen.get(), left, top, SRCCOPY) != FALSE;
    GdiFlush();
    SelectObject(memory.get(), before);
    if (!copied) {
        return {};
    }
    // Each row takes a multiple of four bytes.
    const std::size_t rowBytes = (static_cast<std::size_t>(width) * 3 + 3) / 4 * 4;
    const std::size_t imageBytes = rowBytes * static_cast<std::size_t>(height);
    BITMAPFILEHEADER file{};
    file.bfType = 0x4D42;
    file.bfOffBits = sizeof(file) + sizeof(info.bmiHeader);
    file.bfSize = file.bfOffBits + static_cast<DWORD>(imageBytes);
    return BytesOf(file) + BytesOf(info.bmiHeader) + std::string(static_cast<const char*>(bits), imageBytes);
}
