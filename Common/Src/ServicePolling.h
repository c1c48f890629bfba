#pragma once

/// How long a service may take to start or stop: at most 51 looks at its status, 200 ms apart, which is 10 seconds.
/// That is the longest the library waits for anything, and short enough for a person who waits for the answer.
inline constexpr int kServicePolls = 51;
inline constexpr unsigned long kServicePollMilliseconds = 200;

enum class ServicePoll
{
    Reached, ///< The service is where it is wanted.
    Pending, ///< Not yet.
    Failed,  ///< It cannot get there, or its status cannot be read.
};

/// What a service's state (dwCurrentState, 0 for an unreadable status) means for one that was told to start. A service
/// that has stopped again has given up.
[[nodiscard]] ServicePoll LookAtStart(unsigned long state) noexcept;
/// The same for one that was told to stop. It may be seen running for a while before it obeys.
[[nodiscard]] ServicePoll LookAtStop(unsigned long state) noexcept;

/// Looks at a service until it is where it is wanted, cannot get there, or has used up its looks.
/// @param look  Returns a ServicePoll.
/// @param wait  Waits for the time between two looks.
/// @return true when the service is where it is wanted.
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
