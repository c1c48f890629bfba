#include "FileVersion.h"

#include <windows.h>

#include <algorithm>
#include <array>
#include <vector>

#include "EntryPoints.h"
#include "SystemLibrary.h"
#include "Trace.h"

namespace {
/// @return the file's version resource, empty when it has none.
std::vector<std::byte> ReadVersionResource(const UniqueLibrary& library, const std::string& path)
{
    const auto size = FindEntry<GetFileVersionInfoSizeFn>(library.get(), "GetFileVersionInfoSizeA");
    const auto read = FindEntry<GetFileVersionInfoFn>(library.get(), "GetFileVersionInfoA");
    if (size == nullptr || read == nullptr) {
        return {};
    }
    DWORD ignored = 0;
    std::vector<std::byte> block(size(path.c_str(), &ignored));
    if (!block.empty() && read(path.c_str(), 0, static_cast<DWORD>(block.size()), block.data()) == FALSE) {
        block.clear();
    }
    return block;
}
} // namespace

bool GetModuleVersion(const std::string& path, std::span<char> out)
{
    Trace("Entering - GetModuleVersion");
    WIN32_FIND_DATAA found{};
    const HANDLE search = FindFirstFileA(path.c_str(), &found);
    if (search == INVALID_HANDLE_VALUE) {
        return false;
    }
    FindClose(search);

    const UniqueLibrary library = LoadSystemLibrary("version.dll");
    if (!library) {
        return false;
    }
    const std::vector<std::byte> block = ReadVersionResource(library, path);
    const auto query = FindEntry<VerQueryValueFn>(library.get(), "VerQueryValueA");
    void* record = nullptr;
    UINT recordBytes = 0;
    if (block.empty() || query == nullptr || query(block.data(), "\\", &record, &recordBytes) == FALSE ||
        recordBytes < sizeof(VS_FIXEDFILEINFO)) {
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
