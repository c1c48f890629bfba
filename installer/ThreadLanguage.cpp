#include "ThreadLanguage.h"

#include <array>
#include <cstddef>
#include <string_view>

#include "EntryPoints.h"

namespace {
// Windows Vista and later. The older SetThreadUILanguage cannot undo its setting, and on some systems before Vista it
// does something else.
using SetThreadPreferredUILanguagesFn = BOOL(WINAPI*)(DWORD format, const wchar_t* languages, ULONG* count);
constexpr DWORD kLanguageIdentifiers = 4; // MUI_LANGUAGE_ID

/// @param languages  A list of identifiers, or null to remove the thread's setting.
void PreferUILanguages(const wchar_t* languages)
{
    const auto prefer =
        FindEntry<SetThreadPreferredUILanguagesFn>(GetModuleHandleA("kernel32.dll"), "SetThreadPreferredUILanguages");
    if (prefer != nullptr) {
        prefer(kLanguageIdentifiers, languages, nullptr);
    }
}
} // namespace

ThreadLanguage::ThreadLanguage(uint16_t language)
{
    // Four digits and the two terminators of a list.
    std::array<wchar_t, 6> list{};
    constexpr std::wstring_view kDigits = L"0123456789ABCDEF";
    for (std::size_t digit = 0; digit < 4; ++digit) {
        list[digit] = kDigits[(language >> (12 - 4 * digit)) & 0xFU];
    }
    PreferUILanguages(list.data());
    // What earlier systems use.
    SetThreadLocale(MAKELCID(language, SORT_DEFAULT));
}

ThreadLanguage::~ThreadLanguage()
{
    SetThreadLocale(m_localeBefore);
    PreferUILanguages(nullptr);
}
