#include "LanguageTable.h"

#include <algorithm>
#include <array>
#include <optional>

namespace {
// Primary languages (LANG_... of winnt.h) with one table of texts each; no value means that the system's own identifier
// selects the table, because each sub-language has its own.
struct LanguageRow
{
    uint16_t primary;
    std::string_view code3;
    std::optional<uint16_t> id;
};

constexpr uint16_t kChinese = 4;

constexpr std::array kLanguages = std::to_array<LanguageRow>({
    {7, "DEU", 1031},
    {9, "ENU", 1033},
    {10, "ESN", 3082},
    {12, "FRA", 1036},
    {16, "ITA", 1040},
    {17, "JPN", {}},
    {18, "KOR", {}},
    {22, "PTB", 1046},
});

RunLanguage ChineseForSystem(uint16_t systemLanguage)
{
    switch (systemLanguage >> 10) {
        case 2:
        case 4:
            return {"CHS", systemLanguage};
        case 1:
        case 3:
        case 5:
            return {"CHT", systemLanguage};
        default:
            return {};
    }
}
} // namespace

RunLanguage LanguageForSystem(uint16_t systemLanguage)
{
    const uint16_t primary = systemLanguage & 0x3FFU;
    if (primary == kChinese) {
        return ChineseForSystem(systemLanguage);
    }
    for (const LanguageRow& row : kLanguages) {
        if (row.primary == primary) {
            return {row.code3, row.id.value_or(systemLanguage)};
        }
    }
    return {};
}

uint16_t LanguageAnswer(uint16_t systemLanguage, char* code3, int size)
{
    const RunLanguage language = LanguageForSystem(systemLanguage);
    if (code3 == nullptr) {
        return language.id;
    }
    std::fill_n(code3, std::max(size, 0), '\0');
    if (size < 4) {
        return systemLanguage;
    }
    std::ranges::copy(language.code3, code3);
    return language.id;
}
