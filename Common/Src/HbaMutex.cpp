#include "HbaMutex.h"

namespace {
constexpr char kMutexName[] = R"(Global\CHBAAPINTMUT)";
constexpr DWORD kLimitMilliseconds = 10000;
} // namespace

CHBAAPIMutex::CHBAAPIMutex() : m_mutex(CreateMutexA(nullptr, FALSE, kMutexName)) {}

CHBAAPIMutex::~CHBAAPIMutex()
{
    Unlock();
}

bool CHBAAPIMutex::Lock()
{
    if (!m_mutex) {
        return false;
    }
    if (m_held) {
        // The platform would count a second lock, and one Unlock would not be enough.
        return true;
    }
    const DWORD outcome = WaitForSingleObject(m_mutex.get(), kLimitMilliseconds);
    // An abandoned mutex is owned although Lock fails: it must be released.
    m_held = outcome == WAIT_OBJECT_0 || outcome == WAIT_ABANDONED;
    return outcome == WAIT_OBJECT_0;
}

void CHBAAPIMutex::Unlock()
{
    if (m_held) {
        ReleaseMutex(m_mutex.get());
        m_held = false;
    }
}
