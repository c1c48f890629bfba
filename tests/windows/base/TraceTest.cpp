#include "Trace.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>

#include "CallCount.h"
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

TEST(Trace, JoinsItsPiecesAndLeavesThemAsTheyAre)
{
    TraceCapture trace;
    const std::string device = "VEN_5D1A";
    Trace("device: ", device, std::string_view(", found"), "\n");
    Trace(device);
    EXPECT_EQ(device, "VEN_5D1A");
    const std::array<std::string_view, 3> pieces{"a", "", "b"};
    TracePieces(pieces);
    EXPECT_THAT(trace.Messages(), ElementsAre("device: VEN_5D1A, found\n", "VEN_5D1A", "ab"));
}

TEST(Trace, TriesTheKeyOnEveryCallAlsoWhileItIsOff)
{
    const ScratchRegistryKey debugKey(kDebugKey);
    const CallCount opened("RegOpenKeyA");
    Trace("one");
    Trace("two ", "pieces");
    EXPECT_EQ(opened.Calls(), 2U);
}
