#include "ShownTexts.h"

#include <windows.h>

#include <algorithm>
#include <stdexcept>
#include <vector>

#include "Environment.h"
#include "Handles.h"

namespace {
constexpr WORD kEnglish = MAKELANGID(LANG_ENGLISH, SUBLANG_ENGLISH_US);

BOOL CALLBACK Collect(HMODULE, LPCSTR, LPCSTR, WORD language, LONG_PTR list)
{
    reinterpret_cast<std::vector<WORD>*>(list)->push_back(language);
    return TRUE;
}

/// The languages of the texts that hold string `id`.
std::vector<WORD> LanguagesOf(unsigned id)
{
    std::vector<WORD> languages;
    const UniqueLibrary library(
        LoadLibraryExA((DistFolder() + "\\MorvixRes.dll").c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE));
    EnumResourceLanguagesA(library.get(), reinterpret_cast<LPCSTR>(RT_STRING), MAKEINTRESOURCEA(id / 16 + 1), Collect,
                           reinterpret_cast<LONG_PTR>(&languages));
    return languages;
}
} // namespace

std::string ShownText(unsigned id)
{
    const std::vector<WORD> languages = LanguagesOf(id);
    const WORD own = GetSystemDefaultLangID();
    const auto same = std::ranges::find(languages, own);
    const auto related =
        std::ranges::find_if(languages, [&](WORD language) { return PRIMARYLANGID(language) == PRIMARYLANGID(own); });
    return ResourceText(id, same != languages.end() ? *same : related != languages.end() ? *related : kEnglish);
}
