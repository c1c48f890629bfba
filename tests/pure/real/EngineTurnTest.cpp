#include "EngineTurn.h"

#include <gmock/gmock.h>

#include <stdexcept>
#include <vector>

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {
class EngineTurnTest : public testing::Test
{
protected:
    /// Asks an engine that another installation keeps until it was asked so many times.
    uint32_t AskEngineKeptFor(unsigned asks, uint32_t answer)
    {
        return m_turn.Ask([&] { return asks == 0 ? answer : (--asks, EngineTurn::kAnotherRuns); },
                          [&](unsigned seconds) { m_pauses.push_back(seconds); });
    }

    EngineTurn m_turn;
    std::vector<unsigned> m_pauses;
};
constexpr unsigned kTriesWithinLimit = EngineTurn::kLimitSeconds / EngineTurn::kPauseSeconds;
} // namespace

TEST_F(EngineTurnTest, AnyOtherAnswerCountsAtOnce)
{
    EXPECT_EQ(AskEngineKeptFor(0, 0), 0u);
    EXPECT_EQ(AskEngineKeptFor(0, 1603), 1603u);
    EXPECT_THAT(m_pauses, IsEmpty());
}

TEST_F(EngineTurnTest, AsksAgainAfterAPauseWhileAnotherInstallationRuns)
{
    EXPECT_EQ(AskEngineKeptFor(2, 3010), 3010u);
    EXPECT_THAT(m_pauses, ElementsAre(EngineTurn::kPauseSeconds, EngineTurn::kPauseSeconds));
}

TEST_F(EngineTurnTest, AsksOnceMoreAtItsLimit)
{
    EXPECT_EQ(AskEngineKeptFor(kTriesWithinLimit, 0), 0u);
}

TEST_F(EngineTurnTest, SaysWhatKeptTheEngineWhenTheLimitIsOver)
{
    try {
        static_cast<void>(AskEngineKeptFor(kTriesWithinLimit + 1, 0));
        FAIL() << "it asked on";
    } catch (const std::runtime_error& error) {
        EXPECT_THAT(error.what(), HasSubstr("another installation runs on this machine (1618)"));
        EXPECT_THAT(error.what(), HasSubstr("600 seconds"));
    }
    EXPECT_EQ(m_pauses.size(), kTriesWithinLimit);
}

TEST_F(EngineTurnTest, WaitsItsLimitOnlyOnce)
{
    EXPECT_THROW(AskEngineKeptFor(kTriesWithinLimit + 1, 0), std::runtime_error);
    EXPECT_THROW(AskEngineKeptFor(1, 0), std::runtime_error);
    EXPECT_EQ(m_pauses.size(), kTriesWithinLimit);
}
