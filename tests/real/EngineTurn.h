#pragma once

#include <cstdint>
#include <functional>

/// The engine of Windows Installer does one installation at a time, and answers 1618 while another one runs. On a
/// machine that has just started, one of the system's own often does.
class EngineTurn
{
public:
    /// Asks the engine again, after a pause, until another installation no longer keeps it. All calls together wait
    /// for at most kLimitSeconds, so that a machine that never comes to rest costs a step that time only once.
    /// Throws std::runtime_error, which says so, when the limit is over.
    /// @param ask   Asks the engine, and returns its answer.
    /// @param wait  Waits for so many seconds.
    /// @return the engine's answer, which is not 1618.
    uint32_t Ask(const std::function<uint32_t()>& ask, const std::function<void(unsigned seconds)>& wait);

    static constexpr uint32_t kAnotherRuns = 1618; ///< ERROR_INSTALL_ALREADY_RUNNING
    static constexpr unsigned kPauseSeconds = 10;
    static constexpr unsigned kLimitSeconds = 600;

private:
    unsigned m_waitedSeconds = 0;
};
