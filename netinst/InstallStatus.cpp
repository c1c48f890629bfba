#include "InstallStatus.h"

namespace {
constexpr uint32_t kGeneralFailure = 0x80004005;
constexpr uint32_t kWin32Facility = 0x80070000;
constexpr uint32_t kErrorNumberBits = 0xFFFF;
} // namespace

int32_t StatusForError(uint32_t lastError) noexcept
{
    if (lastError == 0) {
        return static_cast<int32_t>(kGeneralFailure);
    }
    const auto status = static_cast<int32_t>(lastError);
    return status < 0 ? status : static_cast<int32_t>(kWin32Facility | (lastError & kErrorNumberBits));
}
