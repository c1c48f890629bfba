#include "SingleInstance.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>

#include "DebugOutput.h"
#include "Handles.h"
#include "ImportOverride.h"
#include "TestThread.h"

using testing::ElementsAre;

TEST(SingleInstance, FirstRunGoesOnAndHoldsTheMutexForItsLife)
{
    TraceCapture trace;
    EXPECT_EQ(0, PreviousInstanceRunning("MorvixTestFirst"));
    EXPECT_THAT(trace.Messages(), ElementsAre("Entering - PreviousInstanceRunning"));
    const UniqueHandle held(OpenMutexA(SYNCHRONIZE, FALSE, "MorvixTestFirst"));
    EXPECT_NE(nullptr, held);
    EXPECT_EQ(1, PreviousInstanceRunning("MorvixTestFirst"));
}

TEST(SingleInstance, RunStopsWhenAnotherHoldsTheMutex)
{
    const UniqueHandle other(CreateMutexA(nullptr, FALSE, "MorvixTestSecond"));
    EXPECT_EQ(1, PreviousInstanceRunning("MorvixTestSecond"));
}

TEST(SingleInstance, ManagementSoftwareIsFoundByItsMutexAndNoMutexIsLeft)
{
    EXPECT_EQ(0, IsTaviskActive());
    EXPECT_EQ(nullptr, UniqueHandle(OpenMutexA(SYNCHRONIZE, FALSE, "TaviskMutex")));
    const UniqueHandle running(CreateMutexA(nullptr, FALSE, "TaviskMutex"));
    EXPECT_EQ(1, IsTaviskActive());
}

TEST(SingleInstance, ManagementSoftwareDoesNotStopARunOnCurrentSystems)
{
    const UniqueHandle running(CreateMutexA(nullptr, FALSE, "TaviskMutex"));
    EXPECT_EQ(0, PreviousInstanceRunning("MorvixTestThird"));
}

namespace {
decltype(&CreateMutexA) platformCreate = nullptr;

struct MutexRequest
{
    std::string name;
    bool hasSecurity = true;
    BOOL owned = FALSE;
    bool operator==(const MutexRequest&) const = default;
};
std::vector<MutexRequest> mutexRequests;

// The mutex that is made has no name, so that nothing is left of it: the run's own is never closed.
HANDLE WINAPI NoteMutex(LPSECURITY_ATTRIBUTES security, BOOL owned, LPCSTR name)
{
    mutexRequests.push_back({name, security != nullptr, owned});
    const HANDLE mutex = platformCreate(nullptr, FALSE, nullptr);
    SetLastError(ERROR_SUCCESS);
    return mutex;
}
} // namespace

TEST(SingleInstance, BothMutexesAreRequestedOwned)
{
    mutexRequests.clear();
    const ImportOverride note("CreateMutexA", InPlaceOf(platformCreate, &CreateMutexA, &NoteMutex));
    EXPECT_EQ(0, PreviousInstanceRunning("MorvixTestFourth"));
    EXPECT_EQ(0, IsTaviskActive());
    EXPECT_THAT(mutexRequests,
                ElementsAre(MutexRequest{"MorvixTestFourth", false, TRUE}, MutexRequest{"TaviskMutex", false, TRUE}));
}

TEST(SingleInstance, RunsMutexBelongsToTheThreadThatAskedForIt)
{
    ASSERT_EQ(0, PreviousInstanceRunning("MorvixTestFifth"));
    const UniqueHandle seen(OpenMutexA(SYNCHRONIZE, FALSE, "MorvixTestFifth"));
    DWORD other = WAIT_FAILED;
    TestThread([&] { other = WaitForSingleObject(seen.get(), 0); }).join();
    EXPECT_EQ(DWORD{WAIT_TIMEOUT}, other);
}
