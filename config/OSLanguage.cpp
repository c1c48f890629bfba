#include "OSLanguage.h"

#include <windows.h>

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
