#pragma once

#include <windows.h>

/// The test framework's own signal between threads. It would make one of std::mutex and std::condition_variable, which
/// the compiler's runtime does not have; with GTEST_HAS_NOTIFICATION_ it takes this one.
namespace testing::internal {
class Notification
{
public:
    Notification() : m_event(CreateEventA(nullptr, TRUE, FALSE, nullptr)) {}
    ~Notification() { CloseHandle(m_event); }
    Notification(const Notification&) = delete;
    Notification& operator=(const Notification&) = delete;

    void Notify() { SetEvent(m_event); }
    void WaitForNotification() { WaitForSingleObject(m_event, INFINITE); }

private:
    HANDLE m_event;
};
} // namespace testing::internal
