// The trace object with several threads, and with a message that cannot be composed.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <stdexcept>
#include <string>
#include <vector>

#include "LibraryTrace.h"
#include "OrvDebug.h"
#include "TestThread.h"
#include "TraceFile.h"

TEST(TraceThreads, TenThousandLinesOfEachOfTwoThreadsAreAllWholeAndInOrder)
{
    constexpr int kLines = 10000;
    TraceFile file(3);
    const auto write = [&](const char* name) {
        for (int i = 0; i < kLines; ++i) {
            file.object.Print("%s %d", name, i);
        }
    };
    TestThread first(write, "first");
    TestThread second(write, "second");
    first.join();
    second.join();
    int nextFirst = 0;
    int nextSecond = 0;
    for (const std::string& message : file.Messages()) {
        int& next = message.starts_with("first ") ? nextFirst : nextSecond;
        ASSERT_EQ(message, (&next == &nextFirst ? "first " : "second ") + std::to_string(next));
        ++next;
    }
    EXPECT_EQ(nextFirst, kLines);
    EXPECT_EQ(nextSecond, kLines);
}

TEST(TraceThreads, OnlyOneThreadComposesALineAtATime)
{
    struct Counting : COrvDebug
    {
        void PrintCounted() { WriteLine(GetCurrentLogLevel(), Compose, this); }
        static int Compose(char*, size_t, void* context)
        {
            auto* self = static_cast<Counting*>(context);
            const int inside = ++self->inside;
            self->most = std::max(self->most.load(), inside);
            SwitchToThread();
            --self->inside;
            return 0;
        }
        std::atomic<int> inside = 0;
        std::atomic<int> most = 0;
    };
    const ScratchDirectory directory;
    Counting object;
    ASSERT_EQ(object.Configure("Kwelpad", directory.At("trace.log").c_str(), 3, 0, 0, nullptr), 0);
    const auto write = [&] {
        for (int i = 0; i < 2000; ++i) {
            object.PrintCounted();
        }
    };
    TestThread first(write);
    TestThread second(write);
    first.join();
    second.join();
    EXPECT_EQ(object.most, 1);
    EXPECT_EQ(ReadLibraryTrace(directory.At("trace.log")).size(), 4000U);
}

TEST(TraceThreads, AnErrorAtLevelTwoLetsNoMessageOfAnotherThreadThrough)
{
    constexpr int kLines = 2000;
    TraceFile file(2);
    TestThread messages([&] {
        for (int i = 0; i < kLines; ++i) {
            file.object.Print("message");
        }
    });
    for (int i = 0; i < kLines; ++i) {
        file.object.Error("file.cpp", i, "error");
    }
    messages.join();
    const std::vector<std::string> written = file.Messages();
    EXPECT_EQ(written.size(), static_cast<size_t>(kLines));
    EXPECT_EQ(std::count(written.begin(), written.end(), "message"), 0);
}

TEST(TraceException, IsCaughtAndTracedAndTheLockIsFreeAfterwards)
{
    struct Throwing : COrvDebug
    {
        void PrintAndThrow()
        {
            WriteLine(
                GetCurrentLogLevel(), [](char*, size_t, void*) -> int { throw std::runtime_error("x"); }, nullptr);
        }
    };
    const ScratchDirectory directory;
    Throwing object;
    ASSERT_EQ(object.Configure("Kwelpad", directory.At("trace.log").c_str(), 3, 0, 0, nullptr), 0);
    object.PrintAndThrow();
    TestThread([&] { object.Print("another thread"); }).join();
    const std::vector<LibraryTraceLine> lines = ReadLibraryTrace(directory.At("trace.log"));
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_EQ(lines[0].message, "COrvDebug::Error - EXCEPTION DURING DEBUG PRINT.");
    EXPECT_EQ(lines[1].message, "another thread");
}
