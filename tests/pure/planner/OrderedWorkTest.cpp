#include "OrderedWork.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <set>
#include <stdexcept>

TEST(OrderedWork, AnswersComeInTheOrderOfTheInputsAndFewWait)
{
    constexpr std::size_t kInputs = 5000;
    std::atomic<std::size_t> taken = 0;
    std::atomic<std::size_t> most = 0;
    std::size_t next = 0;
    DoInOrder<std::size_t>(
        kInputs,
        [&](std::size_t input) {
            const std::size_t ahead = input - taken.load();
            std::size_t known = most.load();
            while (ahead > known && !most.compare_exchange_weak(known, ahead)) {
            }
            return input * 2;
        },
        [&](std::size_t&& answer) {
            EXPECT_EQ(next * 2, answer);
            ++next;
            ++taken;
        });
    EXPECT_EQ(kInputs, next);
    EXPECT_LT(most, kInputs / 2) << "answers must not pile up";
}

TEST(OrderedWork, NothingToDoIsDone)
{
    DoInOrder<int>(
        0, [](std::size_t) { return 1; }, [](int&&) { FAIL(); });
}

TEST(OrderedWork, WhatOneWorkerThrowsEndsTheWork)
{
    const auto work = [](std::size_t input) -> int {
        if (input == 7) {
            throw std::runtime_error("seven");
        }
        return 0;
    };
    EXPECT_THROW(DoInOrder<int>(1000, work, [](int&&) {}), std::runtime_error);
}

TEST(OrderedWork, ThreadsThatCannotBeStartedAreDoneWithout)
{
    constexpr std::size_t kInputs = 500;
    for (const std::size_t given : {0U, 1U, 3U}) {
        std::size_t started = 0;
        const auto start = [&](const std::function<void()>& run) {
            if (started == given) {
                throw std::system_error(std::make_error_code(std::errc::resource_unavailable_try_again));
            }
            ++started;
            return std::jthread(run);
        };
        std::mutex lock;
        std::set<std::thread::id> workers;
        std::vector<std::size_t> answers;
        ordered_work::DoOnThreads<std::size_t>(
            kInputs, 4,
            [&](std::size_t input) {
                const std::lock_guard guard(lock);
                workers.insert(std::this_thread::get_id());
                return input;
            },
            [&](std::size_t&& answer) { answers.push_back(answer); }, start);
        ASSERT_EQ(kInputs, answers.size()) << given;
        EXPECT_TRUE(std::ranges::is_sorted(answers));
        EXPECT_EQ(given == 0, workers.contains(std::this_thread::get_id()));
        EXPECT_LE(workers.size(), std::max<std::size_t>(given, 1));
    }
}
