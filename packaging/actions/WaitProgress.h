#pragma once

#include <cstdint>
#include <string>

/// Ticks that waiting for a program adds to the progress bar; the engine counts one for each byte of a file.
inline constexpr std::uint32_t kWaitTicks = 1000000;

/// Spreads the ticks of one wait over its time.
class WaitProgress
{
public:
    /// @param limitSeconds  At least 1.
    explicit WaitProgress(std::uint32_t limitSeconds) : m_limitSeconds(limitSeconds) {}

    /// @return the new ticks after so many seconds. Over the whole wait they add up to kWaitTicks at most.
    [[nodiscard]] std::uint32_t TicksAfter(std::uint32_t seconds);

    /// @return the ticks that are left, for a program that ended earlier.
    [[nodiscard]] std::uint32_t Rest() { return TicksAfter(m_limitSeconds); }

    /// "30 of at most 900 seconds".
    [[nodiscard]] std::string Text(std::uint32_t seconds) const;

private:
    std::uint32_t m_limitSeconds;
    std::uint32_t m_sent = 0;
};
