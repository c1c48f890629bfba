#include "InstallOutcome.h"

InstallOutcome OutcomeOf(uint32_t error) noexcept
{
    switch (error) {
        case 0:
            return InstallOutcome::Bound;
        case kErrorNotThere:
            return InstallOutcome::NotThere;
        default:
            return InstallOutcome::Refused;
    }
}

int32_t StatusOf(InstallOutcome outcome) noexcept
{
    switch (outcome) {
        case InstallOutcome::Bound:
            return 0;
        case InstallOutcome::NotThere:
            return static_cast<int32_t>(kErrorNotThere);
        case InstallOutcome::Refused:
            break;
    }
    return static_cast<int32_t>(kStatusRefused);
}
