#pragma once

/// How long a service may take to start or stop: its status is read at most 51 times, 200 ms apart, which is 10
/// seconds. The library waits for nothing longer, and a user can wait that long.
inline constexpr int kServicePolls = 51;
inline constexpr unsigned long kServicePollMilliseconds = 200;

enum class ServicePoll
{
    Reached, ///< The service is in the wanted state.
    Pending, ///< Not yet.
    Failed,  ///< It cannot get there, or its status cannot be read.
};

/// What a service's state (dwCurrentState, 0 for an unreadable status) means for one that was told to start. A service
/// that has stopped again has failed.
[[nodiscard]] ServicePoll LookAtStart(unsigned long state) noexcept;
/// The same for one that was told to stop. It may still be running for a while.
[[nodiscard]] ServicePoll LookAtStop(unsigned long state) noexcept;

/// Reads a service's state until it is the wanted one, cannot be reached, or the attempts are used up.
/// @param look  Returns a ServicePoll.
/// @param wait  Waits between two attempts.
/// @return true when the service is in the wanted state.
template <class Look, class Wait>
[[nodiscard]] bool PollService(Look look, Wait wait)
{
    for (int polls = 1;; ++polls) {
        const ServicePoll outcome = look();
        if (outcome != ServicePoll::Pending || polls == kServicePolls) {
            return outcome == ServicePoll::Reached;
        }
        wait();
    }
}
