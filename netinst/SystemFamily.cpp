#include "SystemFamily.h"

#include "FamilyNames.h"

namespace {
constexpr uint32_t kServed = 0;

SystemFamily FamilyOfWindows9x(uint32_t major, uint32_t minor) noexcept
{
    if (major == 4 && minor == 10) {
        return {kFamilyWindows98, kServed};
    }
    if (major == 4 && minor == 90) {
        return {kFamilyWindowsMe, kServed};
    }
    return {};
}

SystemFamily FamilyOfWindowsNT(uint32_t major, uint32_t minor) noexcept
{
    if (major < 5) {
        // From the name the caller chooses which of its two refusals to show.
        return {kFamilyWindowsNT, kStatusSystemNotServed};
    }
    if (major > 5) {
        // Every system since 6.0 binds drivers the same way, whatever its version.
        return {kFamilyWindowsVista, kServed};
    }
    switch (minor) {
        case 0:
            return {kFamilyWindows2000, kServed};
        case 1:
        case 2:
            return {kFamilyWindowsWhistler, kServed};
        default:
            return {};
    }
}
} // namespace

SystemFamily FamilyForVersion(uint32_t platform, uint32_t major, uint32_t minor) noexcept
{
    switch (platform) {
        case kPlatformWindows9x:
            return FamilyOfWindows9x(major, minor);
        case kPlatformWindowsNT:
            return FamilyOfWindowsNT(major, minor);
        default:
            return {};
    }
}
