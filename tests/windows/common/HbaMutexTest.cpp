// The machine-wide mutex, with another process that holds it.
#include "HbaMutex.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <stdexcept>
#include <string>

#include "HbaApiInt.h"
#include "HbaLibraryDouble.h"
#include "LibraryTrace.h"
#include "TestThread.h"

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::Not;

namespace {
constexpr DWORD kLongWait = 60000;

std::string EventName(const char* what)
{
    return "Local\\MorvixMutexHolder" + std::string(what) + std::to_string(GetCurrentProcessId());
}

/// Another process that holds the mutex from the construction until Release.
class MutexHolder
{
public:
    explicit MutexHolder(const std::string& way = {})
        : m_taken(CreateEventA(nullptr, TRUE, FALSE, EventName("Taken").c_str())),
          m_release(CreateEventA(nullptr, TRUE, FALSE, EventName("Release").c_str()))
    {
        std::string commandLine = '"' + TestFile("doubles\\mutex_holder.exe") + "\" " + kHbaMutexName + " " +
                                  EventName("Taken") + " " + EventName("Release") + " " + way;
        STARTUPINFOA startup{};
        startup.cb = sizeof(startup);
        PROCESS_INFORMATION process{};
        if (CreateProcessA(nullptr, commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                           &process) == FALSE) {
            throw std::runtime_error("cannot start the holder");
        }
        CloseHandle(process.hThread);
        m_process.reset(process.hProcess);
        if (WaitForSingleObject(m_taken.get(), kLongWait) != WAIT_OBJECT_0) {
            throw std::runtime_error("the holder does not hold the mutex");
        }
    }
    ~MutexHolder() { Release(); }
    MutexHolder(const MutexHolder&) = delete;
    MutexHolder& operator=(const MutexHolder&) = delete;

    /// Ends the process. @return true when it did what it was to do.
    bool Release()
    {
        SetEvent(m_release.get());
        DWORD exitCode = 99;
        return WaitForSingleObject(m_process.get(), kLongWait) == WAIT_OBJECT_0 &&
               GetExitCodeProcess(m_process.get(), &exitCode) != FALSE && exitCode == 0;
    }

private:
    UniqueHandle m_taken;
    UniqueHandle m_release;
    UniqueHandle m_process;
};
} // namespace

TEST(HbaMutex, AnObjectThatLocksReleasesAtItsEndAndClosesTheMutex)
{
    {
        CHBAAPIMutex mutex;
        EXPECT_TRUE(mutex.Lock());
        EXPECT_TRUE(UniqueHandle(OpenMutexA(SYNCHRONIZE, FALSE, kHbaMutexName)));
        const UniqueHandle seen(OpenMutexA(SYNCHRONIZE, FALSE, kHbaMutexName));
        DWORD other = WAIT_FAILED;
        TestThread([&] { other = WaitForSingleObject(seen.get(), 0); }).join();
        EXPECT_EQ(other, static_cast<DWORD>(WAIT_TIMEOUT));
    }
    EXPECT_FALSE(UniqueHandle(OpenMutexA(SYNCHRONIZE, FALSE, kHbaMutexName)));
}

TEST(HbaMutex, AfterUnlockAnotherThreadMayHaveIt)
{
    CHBAAPIMutex mutex;
    ASSERT_TRUE(mutex.Lock());
    mutex.Unlock();
    bool other = false;
    TestThread([&] {
        CHBAAPIMutex second;
        other = second.Lock();
    }).join();
    EXPECT_TRUE(other);
}

TEST(HbaMutex, UnlockingWhatIsNotHeldLeavesAnOuterLockAlone)
{
    CHBAAPIMutex outer;
    ASSERT_TRUE(outer.Lock());
    {
        CHBAAPIMutex inner;
        ASSERT_TRUE(inner.Lock());
        inner.Unlock();
        inner.Unlock();
        CHBAAPIMutex neverLocked;
    }
    const UniqueHandle seen(OpenMutexA(SYNCHRONIZE, FALSE, kHbaMutexName));
    DWORD other = WAIT_FAILED;
    TestThread([&] { other = WaitForSingleObject(seen.get(), 0); }).join();
    EXPECT_EQ(other, static_cast<DWORD>(WAIT_TIMEOUT));
}

TEST(HbaMutex, AHeldMutexIsNotLockedTwiceSoOneUnlockReleasesIt)
{
    CHBAAPIMutex mutex;
    ASSERT_TRUE(mutex.Lock());
    EXPECT_TRUE(mutex.Lock());
    mutex.Unlock();
    const UniqueHandle seen(OpenMutexA(SYNCHRONIZE, FALSE, kHbaMutexName));
    DWORD other = WAIT_FAILED;
    TestThread([&] { other = WaitForSingleObject(seen.get(), 0); }).join();
    EXPECT_EQ(other, static_cast<DWORD>(WAIT_OBJECT_0));
}

TEST(HbaMutex, ANameThatBelongsToSomethingElseIsAFailureWithoutWaiting)
{
    const NameTakenByAnEvent taken;
    CHBAAPIMutex mutex;
    EXPECT_FALSE(mutex.Lock());
    mutex.Unlock();
}

TEST(HbaMutex, AfterAHolderThatEndedWithoutReleasingTheNextOperationFailsAndTheOneAfterItWorks)
{
    // Keeps the mutex in existence when its holder ends.
    const UniqueHandle kept(CreateMutexA(nullptr, FALSE, kHbaMutexName));
    MutexHolder holder("abandon");
    ASSERT_TRUE(holder.Release());
    {
        CHBAAPIMutex mutex;
        EXPECT_FALSE(mutex.Lock());
    }
    // By another thread: this one could take what it still holds once more.
    DWORD next = WAIT_FAILED;
    TestThread([&] { next = WaitForSingleObject(kept.get(), 0); }).join();
    EXPECT_EQ(next, static_cast<DWORD>(WAIT_OBJECT_0));
}

TEST(HbaMutex, OperationsWaitForAnotherProcessThatReleasesInTime)
{
    const HbaLibraryDouble library;
    CHBAAPIInt hba;
    MutexHolder holder;
    const LibraryTrace trace;
    bool initialised = false;
    const UniqueHandle ended(CreateEventA(nullptr, TRUE, FALSE, nullptr));
    TestThread operation([&] {
        initialised = hba.InitHBAAPIMod();
        SetEvent(ended.get());
    });
    // It is under way when its first line is written, and one that does not wait ends at once from there.
    for (const DWORD start = GetTickCount(); GetTickCount() - start < kLongWait; Sleep(1)) {
        if (!ReadFileBytes(trace.Path()).empty()) {
            break;
        }
    }
    EXPECT_FALSE(ReadFileBytes(trace.Path()).empty());
    EXPECT_EQ(WaitForSingleObject(ended.get(), 1000), static_cast<DWORD>(WAIT_TIMEOUT));
    EXPECT_THAT(library.TakeJournal(), ElementsAre());
    EXPECT_TRUE(holder.Release());
    operation.join();
    EXPECT_TRUE(initialised);
}

// Takes ten seconds; all operations wait at the same time, so the limit passes once.
TEST(HbaMutex, HeldByAnotherProcessForMoreThanTenSecondsOperationsFailAndDeInitGoesOn)
{
    const HbaLibraryDouble library;
    CHBAAPIInt opened;
    CHBAAPIInt toInitialise;
    CHBAAPIInt toUnload;
    ASSERT_TRUE(opened.InitHBAAPIMod());
    ASSERT_TRUE(toUnload.InitHBAAPIMod());
    MutexHolder holder;
    const LibraryTrace trace;
    static_cast<void>(library.TakeJournal());

    HBA_HANDLE handle = 0;
    HBA_UINT32 count = 0;
    bool gotHandle = true;
    bool initialised = true;
    bool counted = true;
    bool unloaded = false;
    const auto start = std::chrono::steady_clock::now();
    std::array<TestThread, 4> threads{
        TestThread([&] { gotHandle = opened.GetAdapterHandle(L"adapter", handle); }),
        TestThread([&] { initialised = toInitialise.InitHBAAPIMod(); }),
        TestThread([&] { counted = opened.GetVportCount(7, count); }),
        TestThread([&] { unloaded = toUnload.DeInitHBAAPIMod(); }),
    };
    for (TestThread& thread : threads) {
        thread.join();
    }
    const std::chrono::duration<double> waited = std::chrono::steady_clock::now() - start;
    EXPECT_GE(waited.count(), 9.9);
    EXPECT_LT(waited.count(), 30.0);
    EXPECT_TRUE(holder.Release());

    EXPECT_FALSE(gotHandle);
    EXPECT_FALSE(initialised);
    EXPECT_FALSE(counted);
    EXPECT_TRUE(unloaded);
    EXPECT_THAT(library.TakeJournal(), ElementsAre());
    const std::vector<std::string> messages = trace.Messages();
    EXPECT_THAT(messages, Contains("GetAdapterHandle Failure to get Mutex"));
    EXPECT_THAT(messages, Contains("CHBAAPIInt::InitHBAAPIMod failed to acquire Mutex"));
    EXPECT_THAT(messages, Contains("CHBAAPIInt::GetVportCount failed to acquire Mutex"));
    EXPECT_THAT(messages, Contains("CHBAAPIInt::DeInitHBAAPIMod Failed to acquire Mutex"));
    EXPECT_THAT(messages, Not(Contains("Exiting CHBAAPIInt::GetAdapterHandle  bRet = 0")));
}
