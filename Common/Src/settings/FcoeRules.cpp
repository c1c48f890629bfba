#include "FcoeRules.h"

#include <cstdlib>

bool IsFcoeLunInRange(const char* lun)
{
    constexpr long kHighestLun = 4095;
    // A number that does not fit comes out as the highest or lowest there is, and is out of range.
    const long number = std::strtol(lun, nullptr, 10);
    return number >= 0 && number <= kHighestLun;
}
