#include "SystemLibrary.h"

#include <array>
#include <cstddef>
#include <cstring>

UniqueLibrary LoadSystemLibrary(const char* fileName) noexcept
{
    std::array<char, MAX_PATH> path{};
    const UINT directoryChars = GetSystemDirectoryA(path.data(), static_cast<UINT>(path.size()));
    if (directoryChars == 0) {
        return nullptr;
    }
    const std::size_t nameBytes = std::strlen(fileName) + 1;
    if (directoryChars + 1 + nameBytes > path.size()) {
        SetLastError(ERROR_FILENAME_EXCED_RANGE);
        return nullptr;
    }
    path[directoryChars] = '\\';
    std::memcpy(path.data() + directoryChars + 1, fileName, nameBytes);
    return UniqueLibrary(LoadLibraryExA(path.data(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH));
}

UniqueLibrary LoadSideBySideLibrary(const char* fileName) noexcept
{
    ACTCTX_SECTION_KEYED_DATA redirection{};
    redirection.cbSize = sizeof(redirection);
    if (FindActCtxSectionStringA(0, nullptr, ACTIVATION_CONTEXT_SECTION_DLL_REDIRECTION, fileName, &redirection) ==
        FALSE) {
        return LoadSystemLibrary(fileName);
    }
    return UniqueLibrary(LoadLibraryA(fileName));
}

void TakeCurrentDirectoryOutOfLibrarySearch() noexcept
{
    std::array<char, MAX_PATH> directory{};
    const UINT chars = GetSystemDirectoryA(directory.data(), static_cast<UINT>(directory.size()));
    // A named directory replaces the current one in the search; the system's is searched anyway.
    SetDllDirectoryA(chars < directory.size() ? directory.data() : "");
}
