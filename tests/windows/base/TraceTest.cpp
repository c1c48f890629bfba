#include "Trace.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "DebugOutput.h"
#include "RegistryKeys.h"

using testing::Contains;
using testing::ElementsAre;
using testing::Not;

namespace {
constexpr char kDebugKey[] = R"(SOFTWARE\Norda\Basedrivers\Debug)";
}

TEST(Trace, WritesNothingWithoutTheDebugKey)
{
    const ScratchRegistryKey debugKey(kDebugKey);
    DebugOutput output;
    Trace("unseen");
    EXPECT_THAT(output.OwnLines(), Not(Contains("Morvix: unseen")));
}

TEST(Trace, StartsWithTheNextCallWhenTheKeyIsCreatedAndStopsWhenItIsDeleted)
{
    const ScratchRegistryKey debugKey(kDebugKey);
    DebugOutput output;
    Trace("before");
    CreateRegistryKey(kDebugKey);
    Trace("during");
    DeleteRegistryTree(kDebugKey);
    Trace("after");
    EXPECT_THAT(output.OwnLines(), ElementsAre("Morvix: during"));
}

TEST(Trace, AddsThePrefixAndNoNewline)
{
    TraceCapture trace;
    Trace("one\n");
    Trace("two");
    Trace("");
    EXPECT_THAT(trace.Messages(), ElementsAre("one\n", "two", ""));
}

TEST(Trace, ConsumesItsMessageWhetherTheTraceIsOnOrOff)
{
    std::string message = "a text that is long enough to live on the heap, not inside the string object";
    Trace(std::move(message));
    EXPECT_TRUE(message.empty()); // NOLINT(bugprone-use-after-move): that it is empty is the promise
    TraceCapture trace;
    message = "again";
    Trace(std::move(message));
    EXPECT_TRUE(message.empty()); // NOLINT(bugprone-use-after-move)
}
