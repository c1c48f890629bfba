#include "ISCSIRules.h"

#include <tuple>

#include "OSPredicates.h"

bool CanBootOverISCSI(OSCode code, const SystemFacts& facts)
{
    return facts.valid && (IsNT6OrLater(facts) || Win2K3ServicePack(code, facts) >= 1);
}

bool IsInitiatorRecentEnough(const InitiatorVersion& version)
{
    return std::tuple(version.major, version.minor, version.build) >= std::tuple(2U, 0U, 1895U);
}

bool ServicePackHasInitiatorHotFix(OSCode code, const SystemFacts& facts)
{
    return Win2K3ServicePack(code, facts) >= 2;
}

bool IsServer2008DumpHotFixNeeded(OSCode code, const SystemFacts& facts)
{
    return IsWin2K8Family(code) && facts.servicePackMajor < 2;
}

std::wstring HotFixQuery(std::wstring_view hotFixId)
{
    std::wstring query =
        L"SELECT * FROM "
        L"Win32_QuickFixEngineering"
        L" WHERE HotFixID = '";
    for (const wchar_t character : hotFixId) {
        if (character == L'\'' || character == L'\\') {
            query += L'\\';
        }
        query += character;
    }
    return query + L"'";
}
