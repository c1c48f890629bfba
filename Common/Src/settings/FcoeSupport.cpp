#include "FcoeSupport.h"

#include <algorithm>

#include "FcoeRules.h"
#include "OrvDebug.h"

bool CFcoeSupport::IsLunValid(const std::vector<COrvString>& luns) const
{
    OrvTrace().Print("Entering CFcoeSupport::IsLunValid()");
    const bool valid = std::ranges::all_of(luns, [](const COrvString& lun) { return IsFcoeLunInRange(lun); });
    if (!valid) {
        OrvTrace().Print("IsLunValid() - a LUN value is outside the valid range");
    }
    OrvTrace().Print("Leaving CFcoeSupport::IsLunValid(), return value - %d", valid ? 1 : 0);
    return valid;
}
