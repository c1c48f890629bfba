#include "OSLanguage.h"

#include <windows.h>

#include <algorithm>
#include <cstring>

#include "EntryPoints.h"
#include "Handles.h"
#include "LanguageTable.h"
#include "OSVersion.h"
#include "Trace.h"

namespace {
constexpr uint16_t kNoLanguage = 0xFFFF;

uint16_t SystemLanguage()
{
    if (!COSVersion().IsNT5OrLater()) {
        return GetSystemDefaultLangID();
    }
    const UniqueLibrary kernel(LoadLibraryA("Kernel32.dll"));
    const auto getLanguage =
        kernel ? FindEntry<GetSystemDefaultLangIDFn>(kernel.get(), "GetSystemDefaultLangID") : nullptr;
    return getLanguage != nullptr ? getLanguage() : kNoLanguage;
}
} // namespace

uint16_t GetOSLanguageID(char* code3, int size)
{
    Trace("Entering - GetOSLanguageID");
    return LanguageAnswer(SystemLanguage(), code3, size);
}

uint16_t LanguageAnswer(uint16_t systemLanguage, char* code3, int size)
{
    if (code3 != nullptr) {
        std::memset(code3, 0, static_cast<std::size_t>(std::max(size, 0)));
        if (size < 4) {
            return systemLanguage;
        }
    }
    const RunLanguage language = LanguageForSystem(systemLanguage);
    if (code3 != nullptr) {
        std::ranges::copy(language.code3, code3);
    }
    return language.id;
}
