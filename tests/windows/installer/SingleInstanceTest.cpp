#include "SingleInstance.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>

#include <string_view>

#include "DebugOutput.h"
#include "Handles.h"
#include "ImportOverride.h"
#include "TestThread.h"

using testing::ElementsAre;

namespace {
constexpr char kManagementMutex[] = "TaviskMutex";

decltype(&CreateMutexA) platformCreate = nullptr;
std::vector<UniqueHandle> keptMutexes;

// The run keeps its own mutex to the end of the process, and that of the management software when it found one.
HANDLE WINAPI CreateAndNote(LPSECURITY_ATTRIBUTES security, BOOL owned, LPCSTR name)
{
    const HANDLE mutex = platformCreate(security, owned, name);
    const DWORD error = GetLastError();
    if (error == ERROR_ALREADY_EXISTS || std::string_view(name) != kManagementMutex) {
        keptMutexes.emplace_back(mutex);
    }
    SetLastError(error);
    return mutex;
}

/// Closes what a test's run keeps, so that no test finds the mutexes of another one.
class SingleInstance : public testing::Test
{
protected:
    ~SingleInstance() override { keptMutexes.clear(); }

    static UniqueHandle MutexOfAnotherProgram(const char* name)
    {
        return UniqueHandle(platformCreate(nullptr, FALSE, name));
    }

private:
    const ImportOverride m_note{"CreateMutexA", InPlaceOf(platformCreate, &CreateMutexA, &CreateAndNote)};
};
} // namespace

TEST_F(SingleInstance, FirstRunGoesOnAndHoldsTheMutexForItsLife)
{
    TraceCapture trace;
    EXPECT_EQ(0, PreviousInstanceRunning("MorvixTest"));
    EXPECT_THAT(trace.Messages(), ElementsAre("Entering - PreviousInstanceRunning"));
    const UniqueHandle held(OpenMutexA(SYNCHRONIZE, FALSE, "MorvixTest"));
    EXPECT_NE(nullptr, held);
    EXPECT_EQ(1, PreviousInstanceRunning("MorvixTest"));
}

TEST_F(SingleInstance, RunStopsWhenAnotherHoldsTheMutex)
{
    const UniqueHandle other = MutexOfAnotherProgram("MorvixTest");
    EXPECT_EQ(1, PreviousInstanceRunning("MorvixTest"));
}

TEST_F(SingleInstance, ManagementSoftwareIsFoundByItsMutexAndNoneIsLeftWhenItIsNotRunning)
{
    EXPECT_EQ(0, IsTaviskActive());
    EXPECT_EQ(nullptr, UniqueHandle(OpenMutexA(SYNCHRONIZE, FALSE, kManagementMutex)));
    const UniqueHandle running = MutexOfAnotherProgram(kManagementMutex);
    EXPECT_EQ(1, IsTaviskActive());
}

TEST_F(SingleInstance, ManagementSoftwareDoesNotStopARunOnCurrentSystems)
{
    const UniqueHandle running = MutexOfAnotherProgram(kManagementMutex);
    EXPECT_EQ(0, PreviousInstanceRunning("MorvixTest"));
}

TEST_F(SingleInstance, RunsMutexBelongsToTheThreadThatAskedForIt)
{
    ASSERT_EQ(0, PreviousInstanceRunning("MorvixTest"));
    const UniqueHandle seen(OpenMutexA(SYNCHRONIZE, FALSE, "MorvixTest"));
    DWORD other = WAIT_FAILED;
    TestThread([&] { other = WaitForSingleObject(seen.get(), 0); }).join();
    EXPECT_EQ(DWORD{WAIT_TIMEOUT}, other);
}

namespace {
struct MutexRequest
{
    std::string name;
    bool hasSecurity = true;
    BOOL owned = FALSE;
    bool operator==(const MutexRequest&) const = default;
};
std::vector<MutexRequest> mutexRequests;

// Makes a mutex without a name, so that nothing remains of it.
HANDLE WINAPI NoteRequest(LPSECURITY_ATTRIBUTES security, BOOL owned, LPCSTR name)
{
    mutexRequests.push_back({name, security != nullptr, owned});
    const HANDLE mutex = platformCreate(nullptr, FALSE, nullptr);
    SetLastError(ERROR_SUCCESS);
    return mutex;
}
} // namespace

TEST(SingleInstanceMutexes, AreBothRequestedAsOwned)
{
    mutexRequests.clear();
    const ImportOverride note("CreateMutexA", InPlaceOf(platformCreate, &CreateMutexA, &NoteRequest));
    EXPECT_EQ(0, PreviousInstanceRunning("MorvixTest"));
    EXPECT_EQ(0, IsTaviskActive());
    EXPECT_THAT(mutexRequests,
                ElementsAre(MutexRequest{"MorvixTest", false, TRUE}, MutexRequest{kManagementMutex, false, TRUE}));
}
