#include "FcoeRules.h"

#include <cstdlib>

bool IsFcoeLunInRange(const char* lun)
{
    constexpr long kHighestLun = 4095;
    // A number that does not fit becomes the highest or lowest possible one, which is out of range.
    const long number = std::strtol(lun, nullptr, 10);
    return number >= 0 && number <= kHighestLun;
}
