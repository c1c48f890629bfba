#include "OrderedWork.h"

#include <gtest/gtest.h>

#include <atomic>
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
