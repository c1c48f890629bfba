#include "InfQualification.h"

#include <algorithm>
#include <array>

#include "DriverInstallRecord.h"
#include "EqualsIgnoringCase.h"
#include "Tokens.h"

namespace {
// Both spellings of the first brand occur in shipped INF files; no other spelling counts.
constexpr std::array<std::string_view, 3> kBrands{"Norda", "NORDA", "Lumarc"};

struct SignatureRow
{
    std::string_view family;
    std::string_view signature;
};

constexpr std::array kSignatures = std::to_array<SignatureRow>({
    {kFamilyWindowsMe, "$Chicago$"},
    {kFamilyWindows98, "$Chicago$"},
    {kFamilyWindowsWhistler, "$Windows NT$"},
    {kFamilyWindows2000, "$Windows NT$"},
    {kFamilyWindowsVista, "$Windows NT$"},
});
} // namespace

std::string_view ExpectedSignature(std::string_view family)
{
    const auto* const row = std::ranges::find(kSignatures, family, &SignatureRow::family);
    return row == kSignatures.end() ? std::string_view{} : row->signature;
}

bool NamesOurBrand(std::string_view value)
{
    TokenCursor cursor(value);
    while (const auto token = cursor.Next(", ")) {
        if (std::ranges::find(kBrands, *token) != kBrands.end()) {
            return true;
        }
    }
    return false;
}
