#include "WaitProgress.h"

#include <algorithm>

std::uint32_t WaitProgress::TicksAfter(std::uint32_t seconds)
{
    const std::uint64_t reached = std::uint64_t{kWaitTicks} * std::min(seconds, m_limitSeconds) / m_limitSeconds;
    const std::uint32_t fresh =
        static_cast<std::uint32_t>(reached) - std::min(m_sent, static_cast<std::uint32_t>(reached));
    m_sent += fresh;
    return fresh;
}

std::string WaitProgress::Text(std::uint32_t seconds) const
{
    return std::to_string(seconds) + " of at most " + std::to_string(m_limitSeconds) + " seconds";
}
