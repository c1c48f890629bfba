#include "ProberStatus.h"

#include "DriverInstallRecord.h"
#include "EqualsIgnoringCase.h"
#include "StringIds.h"

std::optional<uint32_t> MessageForProberStatus(uint32_t status, std::string_view osFamily)
{
    switch (status) {
        case kStatusNotAdministrator:
            return kStringAdministratorNeeded;
        case kStatusNoAdapter:
            return kStringNoAdapter;
        case kStatusNotReady:
            return kStringNotReady;
        case kStatusSystemUnsupported:
            return EqualsIgnoringCase(osFamily, kFamilyWindowsNT) ? kStringWindowsNTUnsupported
                                                                  : kStringSystemUnsupported;
        default:
            return std::nullopt;
    }
}
