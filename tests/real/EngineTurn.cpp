#include "EngineTurn.h"

#include <stdexcept>
#include <string>

uint32_t EngineTurn::Ask(const std::function<uint32_t()>& ask, const std::function<void(unsigned seconds)>& wait)
{
    for (;;) {
        const uint32_t answer = ask();
        if (answer != kAnotherRuns) {
            return answer;
        }
        if (m_waitedSeconds >= kLimitSeconds) {
            throw std::runtime_error("another installation runs on this machine (1618), and has not ended in " +
                                     std::to_string(m_waitedSeconds) +
                                     " seconds: wait for its end, and run this step again");
        }
        wait(kPauseSeconds);
        m_waitedSeconds += kPauseSeconds;
    }
}
