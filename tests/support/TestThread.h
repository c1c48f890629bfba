#pragma once

#include <windows.h>

#include <functional>
#include <memory>
#include <utility>

#include "Handles.h"

/// A thread of a test. The compiler's runtime has no threads, because its programs must start on systems without the
/// functions that they need.
class TestThread
{
public:
    TestThread() = default;

    /// Starts a thread that runs `body`, which must not throw.
    template <class Body, class... Arguments>
    explicit TestThread(Body body, Arguments... arguments)
        : m_body(std::make_unique<std::function<void()>>([=]() mutable { body(arguments...); })),
          m_thread(CreateThread(nullptr, 0, &Run, m_body.get(), 0, nullptr))
    {
    }
    ~TestThread() { join(); }
    TestThread(const TestThread&) = delete;
    TestThread& operator=(const TestThread&) = delete;
    TestThread(TestThread&& other) noexcept = default;
    TestThread& operator=(TestThread&& other) noexcept
    {
        join();
        m_body = std::move(other.m_body);
        m_thread = std::move(other.m_thread);
        return *this;
    }

    /// Waits until the thread has ended; nothing to wait for is no error.
    void join() noexcept
    {
        if (m_thread) {
            WaitForSingleObject(m_thread.get(), INFINITE);
            m_thread.reset();
        }
    }

private:
    static DWORD WINAPI Run(void* body)
    {
        (*static_cast<std::function<void()>*>(body))();
        return 0;
    }

    std::unique_ptr<std::function<void()>> m_body;
    UniqueHandle m_thread;
};

/// A lock within one process, for std::lock_guard.
class TestLock
{
public:
    TestLock() { InitializeCriticalSection(&m_section); }
    ~TestLock() { DeleteCriticalSection(&m_section); }
    TestLock(const TestLock&) = delete;
    TestLock& operator=(const TestLock&) = delete;
    void lock() { EnterCriticalSection(&m_section); }
    void unlock() { LeaveCriticalSection(&m_section); }

private:
    CRITICAL_SECTION m_section{};
};
