#include "SingleInstance.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>

#include "DebugOutput.h"
#include "Handles.h"

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

TEST(SingleInstance, ManagementSoftwareIsFoundByItsMutexAndLeavesNoneBehind)
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
