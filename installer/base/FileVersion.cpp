#include "FileVersion.h"

#include <windows.h>

#include <algorithm>
#include <array>
#include <vector>

#include "Trace.h"

bool GetModuleVersion(const std::string& path, std::span<char> out)
{
    Trace("Entering - GetModuleVersion");
    WIN32_FIND_DATAA found{};
    const HANDLE search = FindFirstFileA(path.c_str(), &found);
    if (search == INVALID_HANDLE_VALUE) {
        return false;
    }
    FindClose(search);

    DWORD ignored = 0;
    const DWORD bytes = GetFileVersionInfoSizeA(path.c_str(), &ignored);
    if (bytes == 0) {
        return false;
    }
    std::vector<std::byte> block(bytes);
    if (GetFileVersionInfoA(path.c_str(), 0, bytes, block.data()) == FALSE) {
        return false;
    }
    void* record = nullptr;
    UINT recordBytes = 0;
    if (VerQueryValueA(block.data(), "\\", &record, &recordBytes) == FALSE || recordBytes < sizeof(VS_FIXEDFILEINFO)) {
        return false;
    }
    const auto& fixed = *static_cast<const VS_FIXEDFILEINFO*>(record);
    std::array<char, 24> text{}; // four numbers of at most 65535, three full stops and the terminator
    const int chars =
        wsprintfA(text.data(), "%d.%d.%d.%d", HIWORD(fixed.dwFileVersionMS), LOWORD(fixed.dwFileVersionMS),
                  HIWORD(fixed.dwFileVersionLS), LOWORD(fixed.dwFileVersionLS));
    if (chars <= 0 || out.size() < text.size()) {
        return false;
    }
    std::ranges::copy(text, out.begin());
    Trace(text.data());
    return true;
}
