#include "ServicePolling.h"

namespace {
// The platform's numbers for a service's state.
constexpr unsigned long kUnreadable = 0;
constexpr unsigned long kStopped = 1;
constexpr unsigned long kStopPending = 3;
constexpr unsigned long kRunning = 4;
} // namespace

ServicePoll LookAtStart(unsigned long state) noexcept
{
    switch (state) {
        case kRunning:
            return ServicePoll::Reached;
        case kUnreadable:
        case kStopped:
        case kStopPending:
            return ServicePoll::Failed;
        default:
            return ServicePoll::Pending;
    }
}

ServicePoll LookAtStop(unsigned long state) noexcept
{
    switch (state) {
        case kStopped:
            return ServicePoll::Reached;
        case kUnreadable:
            return ServicePoll::Failed;
        default:
            return ServicePoll::Pending;
    }
}
