#include "LibraryLoads.h"

#include <algorithm>
#include <utility>

namespace {
decltype(&LoadLibraryA) platformLoad = nullptr;
decltype(&LoadLibraryW) platformLoadWide = nullptr;
decltype(&GetProcAddress) platformFind = nullptr;
decltype(&FreeLibrary) platformFree = nullptr;

struct Load
{
    std::string name;
    HMODULE module = nullptr;
};
std::vector<std::string> loaded;
std::vector<Load> stillLoaded;
std::string missing;

HMODULE Note(const std::string& name, HMODULE library)
{
    const DWORD lastError = GetLastError();
    if (library != nullptr) {
        loaded.push_back(name);
        stillLoaded.push_back({name, library});
    }
    SetLastError(lastError);
    return library;
}

HMODULE WINAPI NoteLoad(LPCSTR name)
{
    return Note(name, platformLoad(name));
}

HMODULE WINAPI NoteLoadWide(LPCWSTR name)
{
    std::string narrow;
    for (const wchar_t* at = name; *at != L'\0'; ++at) {
        narrow += static_cast<char>(*at);
    }
    return Note(narrow, platformLoadWide(name));
}

FARPROC WINAPI FindAllButOne(HMODULE library, LPCSTR name)
{
    // Entry points that are asked for by number have no name.
    if (reinterpret_cast<ULONG_PTR>(name) > 0xFFFF && name == missing) {
        SetLastError(ERROR_PROC_NOT_FOUND);
        return nullptr;
    }
    return platformFind(library, name);
}

BOOL WINAPI NoteFree(HMODULE library)
{
    const auto load = std::ranges::find(stillLoaded, library, &Load::module);
    if (load != stillLoaded.end()) {
        stillLoaded.erase(load);
    }
    return platformFree(library);
}
} // namespace

LibraryLoads::LibraryLoads(std::string missingEntry)
    : m_load("LoadLibraryA", InPlaceOf(platformLoad, &LoadLibraryA, &NoteLoad)),
      m_loadWide("LoadLibraryW", InPlaceOf(platformLoadWide, &LoadLibraryW, &NoteLoadWide)),
      m_find("GetProcAddress", InPlaceOf(platformFind, &GetProcAddress, &FindAllButOne)),
      m_free("FreeLibrary", InPlaceOf(platformFree, &FreeLibrary, &NoteFree))
{
    loaded.clear();
    stillLoaded.clear();
    missing = std::move(missingEntry);
}

LibraryLoads::~LibraryLoads()
{
    for (const Load& load : stillLoaded) {
        platformFree(load.module);
    }
}

const std::vector<std::string>& LibraryLoads::Loaded()
{
    return loaded;
}

std::vector<std::string> LibraryLoads::StillLoaded()
{
    std::vector<std::string> names;
    std::ranges::transform(stillLoaded, std::back_inserter(names), &Load::name);
    return names;
}
