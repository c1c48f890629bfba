#pragma once

#include <mutex>
#include <shared_mutex>

/// Locks of what several threads share. The compiler's runtime for Windows has no threads: there one does all the work,
/// and a lock does nothing.
#ifdef _WIN32
inline constexpr bool kHasThreads = false;
struct Mutex
{
    void lock() {}
    void unlock() {}
    void lock_shared() {}
    void unlock_shared() {}
};
using SharedMutex = Mutex;
#else
inline constexpr bool kHasThreads = true;
using Mutex = std::mutex;
using SharedMutex = std::shared_mutex;
#endif
